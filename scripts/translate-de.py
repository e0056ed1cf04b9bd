#!/usr/bin/env python3
"""Fills German translations into i18n/ZalGApplication_de.ts for the texts
listed here; run after lupdate. Texts not listed stay unfinished and show in
English."""
import sys
import xml.etree.ElementTree as ET

DE = {
    "abort the computation?": "Die Berechnung abbrechen?",
    "ok and undo": "OK und rückgängig",
    "cannot save icons": "Die Symbole können nicht gespeichert werden",
    "cannot load icons": "Die Symbole können nicht geladen werden",
    "icon too large": "Symbol zu groß",
    "invalid icon count block version": "Ungültige Blockversion der Symbolanzahl",
    "invalid icon name block version": "Ungültige Blockversion des Symbolnamens",
    "invalid icon block version": "Ungültige Blockversion des Symbols",
    "invalid icon size %1 x %2": "Ungültige Symbolgröße %1 x %2",
    "cannot open file for reading: %1": "Die Datei kann nicht zum Lesen geöffnet werden: %1",
    "cannot open file for reading %1": "Die Datei kann nicht zum Lesen geöffnet werden %1",
    "cannot identify image type for file %1": "Der Bildtyp der Datei %1 kann nicht bestimmt werden",
    "cannot identify file type for file %1": "Der Dateityp der Datei %1 kann nicht bestimmt werden",
    "open file %1": "Datei %1 öffnen",
    "can't start shell process": "Der Shell-Prozess kann nicht gestartet werden",
    "shell command execution aborted": "Ausführung des Shell-Befehls abgebrochen",
    "can't execute:": "Kann nicht ausgeführt werden:",
    "exit code": "Rückgabewert",
    "abnormal exit": "Abnormales Ende",
    "can't write shell command file:": "Die Shell-Befehlsdatei kann nicht geschrieben werden:",
    "cannot save shortcut data: %1": "Die Tastenkürzel können nicht gespeichert werden: %1",
    "cannot load shortcut data: %1": "Die Tastenkürzel können nicht geladen werden: %1",
    "another fuction is active": "Eine andere Funktion ist aktiv",
    "the selected command is insensitive": "Der gewählte Befehl ist nicht verfügbar",
    "the selected command is unknown": "Der gewählte Befehl ist unbekannt",
    "the file type cannot be identified": "Der Dateityp kann nicht bestimmt werden",
    "the application cannot change to the correct mode": "Die Anwendung kann nicht in den passenden Modus wechseln",
    "there syntax is invalid": "Die Syntax ist ungültig",
    "user abort": "Abbruch durch den Benutzer",
    "out of memory": "Nicht genügend Speicher",
    "command parameter error": "Fehler in den Befehlsparametern",
    "file not found": "Datei nicht gefunden",
    "invalid stage command": "Ungültiger Stufenbefehl",
    "command not allowed in this application mode": "Befehl in diesem Anwendungsmodus nicht erlaubt",
    "the command is not sensitive: %1": "Der Befehl ist nicht verfügbar: %1",
    "configuration error": "Konfigurationsfehler",
    "the configuration file is invalid. default values will be used.":
        "Die Konfigurationsdatei ist ungültig. Es werden die Standardwerte verwendet.",
    "the configured temporary directory does not exist. set an existing and writable directory in the preferences ":
        "Das eingestellte temporäre Verzeichnis existiert nicht. Stellen Sie in den Einstellungen ein vorhandenes, beschreibbares Verzeichnis ein ",
    "exit title": "Programm beenden",
    "there are unsaved data sets! do you really want to exit the program?":
        "Es gibt ungesicherte Daten! Wollen Sie das Programm wirklich beenden?",
    "save session": "Sitzung sichern",
    "exit": "Beenden",
    "cancel": "Abbrechen",
    "memory": "Speicher",
    "mb": "MB",
    "sensor label tt": "Sensor verbunden",
    "meminfo tt": "Prozessgröße / freier Speicher / freier Auslagerungsspeicher",
    "administration mode": "Administrationsmodus",
    "editing level": "Bearbeitungsstufe",
    "language": "Sprache",
    "default units": "Standardeinheiten",
    "user directory": "Benutzerverzeichnis",
    "project base": "Projektverzeichnis",
    "temp dir": "Temporäres Verzeichnis",
    "clipboard directory": "Verzeichnis der Zwischenablage",
    "default image file format": "Standard-Bildformat",
    "default video file format": "Standard-Videoformat",
    "use large icons": "Große Symbole verwenden",
    "virtual memory limit (factor * main_memory)": "Grenze des virtuellen Speichers (Faktor * Hauptspeicher)",
    "system templates": "Systemvorlagen",
    "remote control node": "Fernbedienung",
    "measurement key code": "Tastencode Messen",
    "undo key code": "Tastencode Rückgängig",
    "reference key code": "Tastencode Referenz",
    "render node": "Darstellung",
    "the currently active renderer does not allow the window to be fully maximized.":
        "Der aktive Renderer erlaubt nicht, das Fenster ganz zu maximieren.",
    "error": "Fehler",
    "ok": "OK",
    "information": "Information",
    "do not show again": "Nicht mehr anzeigen",
    "command: %1 %2": "Befehl: %1 %2",
    "(*)": "(*)",
    "cannot save toolbars: ": "Werkzeugleisten können nicht gesichert werden: ",
    "cannot load toolbars: ": "Werkzeugleisten können nicht geladen werden: ",
    "invalid file version": "ungültige Dateiversion",
    "custom toolbar": "Eigene Werkzeugleiste",
    "shortcuts": "Tastenkürzel",
    "default map name": "Standardbelegung",
    "abort computation": "Berechnung abbrechen",
    "computation aborted": "Berechnung abgebrochen",
    "aborting computation": "Berechnung wird abgebrochen",
}


def main(path):
    tree = ET.parse(path)
    filled = 0
    for message in tree.iter("message"):
        source = message.findtext("source")
        translation = message.find("translation")
        if source in DE and translation is not None:
            translation.text = DE[source]
            translation.attrib.pop("type", None)
            filled += 1
    tree.write(path, encoding="utf-8", xml_declaration=True)
    print(f"{filled} translations filled")


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "i18n/ZalGApplication_de.ts")

<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>GAPPCommand</name>
    <message>
        <source>command: %1 %2</source>
        <translation>Befehl: %1 %2</translation>
    </message>
</context>
<context>
    <name>GAPPExecute</name>
    <message>
        <source>abort computation</source>
        <translation>Berechnung abbrechen</translation>
    </message>
    <message>
        <source>abort the computation?</source>
        <translation>Die Berechnung abbrechen?</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>ok and undo</source>
        <translation>OK und rückgängig</translation>
    </message>
    <message>
        <source>cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>GAPPExecute_progress</name>
    <message>
        <source>computation aborted</source>
        <translation>Berechnung abgebrochen</translation>
    </message>
    <message>
        <source>aborting computation</source>
        <translation>Berechnung wird abgebrochen</translation>
    </message>
</context>
<context>
    <name>GAPPExit_dlg</name>
    <message>
        <source>exit title</source>
        <translation>Programm beenden</translation>
    </message>
    <message>
        <source>there are unsaved data sets! do you really want to exit the program?</source>
        <translation>Es gibt ungesicherte Daten! Wollen Sie das Programm wirklich beenden?</translation>
    </message>
    <message>
        <source>save session</source>
        <translation>Sitzung sichern</translation>
    </message>
    <message>
        <source>exit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>GAPP_cfg</name>
    <message>
        <source>remote control ok sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control measurement sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control finish measurement sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control measurement2 sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control finish measurement2 sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control referencing sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control finish referencing sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control error sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control referencing error sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control mode change sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control undo sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>remote control create element sound</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>editing level</source>
        <translation>Bearbeitungsstufe</translation>
    </message>
    <message>
        <source>language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>user directory</source>
        <translation>Benutzerverzeichnis</translation>
    </message>
    <message>
        <source>project base</source>
        <translation>Projektverzeichnis</translation>
    </message>
    <message>
        <source>temp dir</source>
        <translation>Temporäres Verzeichnis</translation>
    </message>
    <message>
        <source>clipboard directory</source>
        <translation>Verzeichnis der Zwischenablage</translation>
    </message>
    <message>
        <source>default image file format</source>
        <translation>Standard-Bildformat</translation>
    </message>
    <message>
        <source>TIFF</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>JPEG</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>PNG</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>default video file format</source>
        <translation>Standard-Videoformat</translation>
    </message>
    <message>
        <source>MPG</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>AVI</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>use large icons</source>
        <translation>Große Symbole verwenden</translation>
    </message>
    <message>
        <source>virtual memory limit (factor * main_memory)</source>
        <translation>Grenze des virtuellen Speichers (Faktor * Hauptspeicher)</translation>
    </message>
    <message>
        <source>system templates</source>
        <translation>Systemvorlagen</translation>
    </message>
    <message>
        <source>remote control node</source>
        <translation>Fernbedienung</translation>
    </message>
    <message>
        <source>measurement key code</source>
        <translation>Tastencode Messen</translation>
    </message>
    <message>
        <source>undo key code</source>
        <translation>Tastencode Rückgängig</translation>
    </message>
    <message>
        <source>reference key code</source>
        <translation>Tastencode Referenz</translation>
    </message>
    <message>
        <source>render node</source>
        <translation>Darstellung</translation>
    </message>
</context>
<context>
    <name>GAPP_err</name>
    <message>
        <source>the command is not sensitive: %1</source>
        <translation>Der Befehl ist nicht verfügbar: %1</translation>
    </message>
    <message>
        <source>another fuction is active</source>
        <translation>Eine andere Funktion ist aktiv</translation>
    </message>
    <message>
        <source>another fuction is active wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>the selected command is insensitive</source>
        <translation>Der gewählte Befehl ist nicht verfügbar</translation>
    </message>
    <message>
        <source>the selected command is insensitive wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>the selected command is unknown</source>
        <translation>Der gewählte Befehl ist unbekannt</translation>
    </message>
    <message>
        <source>the selected command is unknown wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>command not allowed in this application mode</source>
        <translation>Befehl in diesem Anwendungsmodus nicht erlaubt</translation>
    </message>
    <message>
        <source>command not allowed in this application mode wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>there syntax is invalid</source>
        <translation>Die Syntax ist ungültig</translation>
    </message>
    <message>
        <source>there syntax is invalid wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>the file type cannot be identified</source>
        <translation>Der Dateityp kann nicht bestimmt werden</translation>
    </message>
    <message>
        <source>the file type cannot be identified wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>the application cannot change to the correct mode</source>
        <translation>Die Anwendung kann nicht in den passenden Modus wechseln</translation>
    </message>
    <message>
        <source>the application cannot change to the correct mode wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>user abort</source>
        <translation>Abbruch durch den Benutzer</translation>
    </message>
    <message>
        <source>user abort wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>out of memory</source>
        <translation>Nicht genügend Speicher</translation>
    </message>
    <message>
        <source>out of memory wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>command parameter error</source>
        <translation>Fehler in den Befehlsparametern</translation>
    </message>
    <message>
        <source>command parameter error wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>file not found</source>
        <translation>Datei nicht gefunden</translation>
    </message>
    <message>
        <source>file not found wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>invalid stage command</source>
        <translation>Ungültiger Stufenbefehl</translation>
    </message>
    <message>
        <source>invalid stage command wt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>invalid map block version</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>cannot save shortcut data: %1</source>
        <translation>Die Tastenkürzel können nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>invalid file version</source>
        <translation>ungültige Dateiversion</translation>
    </message>
    <message>
        <source>invalid map count block version</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>invalid map name block version</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>cannot load shortcut data: %1</source>
        <translation>Die Tastenkürzel können nicht geladen werden: %1</translation>
    </message>
    <message>
        <source>cannot save toolbars: </source>
        <translation>Werkzeugleisten können nicht gesichert werden: </translation>
    </message>
    <message>
        <source>cannot load toolbars: </source>
        <translation>Werkzeugleisten können nicht geladen werden: </translation>
    </message>
    <message>
        <source>cannot save icons</source>
        <translation>Die Symbole können nicht gespeichert werden</translation>
    </message>
    <message>
        <source>invalid icon count block version</source>
        <translation>Ungültige Blockversion der Symbolanzahl</translation>
    </message>
    <message>
        <source>invalid icon name block version</source>
        <translation>Ungültige Blockversion des Symbolnamens</translation>
    </message>
    <message>
        <source>cannot load icons</source>
        <translation>Die Symbole können nicht geladen werden</translation>
    </message>
    <message>
        <source>icon too large</source>
        <translation>Symbol zu groß</translation>
    </message>
    <message>
        <source>invalid icon block version</source>
        <translation>Ungültige Blockversion des Symbols</translation>
    </message>
    <message>
        <source>invalid icon size %1 x %2</source>
        <translation>Ungültige Symbolgröße %1 x %2</translation>
    </message>
    <message>
        <source>cannot open file for reading: %1</source>
        <translation>Die Datei kann nicht zum Lesen geöffnet werden: %1</translation>
    </message>
    <message>
        <source>cannot identify image type for file %1</source>
        <translation>Der Bildtyp der Datei %1 kann nicht bestimmt werden</translation>
    </message>
    <message>
        <source>cannot identify file type for file %1</source>
        <translation>Der Dateityp der Datei %1 kann nicht bestimmt werden</translation>
    </message>
    <message>
        <source>cannot open file for reading %1</source>
        <translation>Die Datei kann nicht zum Lesen geöffnet werden %1</translation>
    </message>
    <message>
        <source>open file %1</source>
        <translation>Datei %1 öffnen</translation>
    </message>
</context>
<context>
    <name>GAPP_info</name>
    <message>
        <source>the currently active renderer does not allow the window to be fully maximized.</source>
        <translation>Der aktive Renderer erlaubt nicht, das Fenster ganz zu maximieren.</translation>
    </message>
</context>
<context>
    <name>GAppMainWindow</name>
    <message>
        <source>administration mode</source>
        <translation>Administrationsmodus</translation>
    </message>
</context>
<context>
    <name>GAppMemory</name>
    <message>
        <source>sensor label tt</source>
        <translation>Sensor verbunden</translation>
    </message>
    <message>
        <source>meminfo tt</source>
        <translation>Prozessgröße / freier Speicher / freier Auslagerungsspeicher</translation>
    </message>
    <message>
        <source>memory</source>
        <translation>Speicher</translation>
    </message>
    <message>
        <source>mb</source>
        <translation>MB</translation>
    </message>
</context>
<context>
    <name>GAppShortcut</name>
    <message>
        <source>default map name</source>
        <translation>Standardbelegung</translation>
    </message>
</context>
<context>
    <name>GAppStatusMgr</name>
    <message>
        <source>(*)</source>
        <translation>(*)</translation>
    </message>
</context>
<context>
    <name>GApp_ShellExecuter_err</name>
    <message>
        <source>can't start shell process</source>
        <translation>Der Shell-Prozess kann nicht gestartet werden</translation>
    </message>
    <message>
        <source>shell command execution aborted</source>
        <translation>Ausführung des Shell-Befehls abgebrochen</translation>
    </message>
    <message>
        <source>can't execute:</source>
        <translation>Kann nicht ausgeführt werden:</translation>
    </message>
    <message>
        <source>exit code</source>
        <translation>Rückgabewert</translation>
    </message>
    <message>
        <source>abnormal exit</source>
        <translation>Abnormales Ende</translation>
    </message>
    <message>
        <source>abort computation</source>
        <translation>Berechnung abbrechen</translation>
    </message>
    <message>
        <source>abort the computation?</source>
        <translation>Die Berechnung abbrechen?</translation>
    </message>
    <message>
        <source>can't write shell command file:</source>
        <translation>Die Shell-Befehlsdatei kann nicht geschrieben werden:</translation>
    </message>
</context>
<context>
    <name>GApp_Shortcut</name>
    <message>
        <source>shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>custom toolbar</source>
        <translation>Eigene Werkzeugleiste</translation>
    </message>
</context>
<context>
    <name>GApp_config_err</name>
    <message>
        <source>configuration error</source>
        <translation>Konfigurationsfehler</translation>
    </message>
    <message>
        <source>the configuration file is invalid. default values will be used.</source>
        <translation>Die Konfigurationsdatei ist ungültig. Es werden die Standardwerte verwendet.</translation>
    </message>
    <message>
        <source>the configured temporary directory does not exist. set an existing and writable directory in the preferences </source>
        <translation>Das eingestellte temporäre Verzeichnis existiert nicht. Stellen Sie in den Einstellungen ein vorhandenes, beschreibbares Verzeichnis ein </translation>
    </message>
</context>
<context>
    <name>GTools</name>
    <message>
        <source>error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>information</source>
        <translation>Information</translation>
    </message>
    <message>
        <source>do not show again</source>
        <translation>Nicht mehr anzeigen</translation>
    </message>
</context>
<context>
    <name>MSystem_cfg</name>
    <message>
        <source>default units</source>
        <translation>Standardeinheiten</translation>
    </message>
</context>
<context>
    <name>Zal_cfg</name>
    <message>
        <source>cannot read profile %1: missing, too large or not UTF-8</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>profile %1, line %2: %3</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>file too large</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>line too long</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>malformed quote or escape</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>not a profile of version 1</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>a line must begin with a directive</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>empty name</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>missing command name</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>unknown directive '%1'</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>'%1' needs a name and at least one command</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>Zal_stream</name>
    <message>
        <source>cannot write %1: %2</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: a value written outside a block</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: writing past the end of the block (%2 bytes declared)</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: a block is open already</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: no open block</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: block payload of %2 bytes, %3 declared</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: closed with a block open</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>cannot open %1: %2</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 is not a regular file</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 is not a stream file</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 has the unknown stream layout %2</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: reading past the end of the file</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 is of type '%2', not '%3'</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: read error</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: block of %2 bytes in a file with %3 left</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: a value read outside a block</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: reading past the end of the block</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: invalid boolean value %2</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: invalid string length %2</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1: string of %2 bytes exceeds its block</source>
        <translation type="unfinished" />
    </message>
</context>
</TS>
<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
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
    <name>GAPPCommand</name>
    <message>
        <source>command: %1 %2</source>
        <translation>Befehl: %1 %2</translation>
    </message>
</context>
</TS>

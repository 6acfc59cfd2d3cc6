<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_GB">
<context>
    <name>Quorvix</name>
    <message>
        <source>Network Requests</source>
        <translation>Netzwerkanfragen</translation>
    </message>
    <message>
        <source>Search requests...</source>
        <translation>Anfragen suchen …</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Export Failed</source>
        <translation>Export fehlgeschlagen</translation>
    </message>
    <message>
        <source>No network requests to export.</source>
        <translation>Keine Anfragen zum Exportieren.</translation>
    </message>
    <message>
        <source>Missing request URL.</source>
        <translation>Die Anfrage hat keine URL.</translation>
    </message>
    <message>
        <source>items</source>
        <translation>Elemente</translation>
    </message>
    <message>
        <source>Decoded Base64</source>
        <translation>Dekodiertes Base64</translation>
    </message>
</context>
</TS>

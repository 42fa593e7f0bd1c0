<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Alert</name>
    <message>
        <source>Accept</source>
        <translation>Annehmen</translation>
    </message>
    <message>
        <source>ACCEPT</source>
        <translation>ANNEHMEN</translation>
    </message>
</context>
<context>
    <name>ControlButtons</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>CONTINUE</source>
        <translation>WEITER</translation>
    </message>
</context>
<context>
    <name>CorvantaSdkVideoEditor</name>
    <message>
        <source>This file can't be read as a video.</source>
        <translation>Diese Datei kann nicht als Video gelesen werden.</translation>
    </message>
    <message>
        <source>This video has no length.</source>
        <translation>Dieses Video hat keine Länge.</translation>
    </message>
    <message>
        <source>There is no picture in this file.</source>
        <translation>In dieser Datei ist kein Bild.</translation>
    </message>
    <message>
        <source>The picture can't be shown.</source>
        <translation>Das Bild kann nicht gezeigt werden.</translation>
    </message>
    <message>
        <source>An error occurred while editing the video. Please try again.</source>
        <translation>Beim Bearbeiten des Videos ist ein Fehler aufgetreten. Bitte versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>An error occurred. Please try again.</source>
        <translation>Ein Fehler ist aufgetreten. Bitte versuchen Sie es noch einmal.</translation>
    </message>
</context>
<context>
    <name>CutChoice</name>
    <message>
        <source>A fast cut keeps no picture of this range.</source>
        <translation>Ein schneller Schnitt behält kein Bild dieses Bereichs.</translation>
    </message>
    <message>
        <source>A fast cut loses the first %1 s of the picture.</source>
        <translation>Ein schneller Schnitt verliert die ersten %1 s des Bildes.</translation>
    </message>
    <message>
        <source>A fast cut starts the picture %1 s late.</source>
        <translation>Ein schneller Schnitt beginnt das Bild %1 s zu spät.</translation>
    </message>
    <message>
        <source>about %1 s</source>
        <translation>etwa %1 s</translation>
    </message>
    <message>
        <source>about %1 min</source>
        <translation>etwa %1 min</translation>
    </message>
</context>
<context>
    <name>CutQuestion</name>
    <message>
        <source>Exact or fast?</source>
        <translation>Genau oder schnell?</translation>
    </message>
    <message>
        <source>An exact cut keeps all of it.</source>
        <translation>Ein genauer Schnitt behält alles.</translation>
    </message>
    <message>
        <source>Exact</source>
        <translation>Genau</translation>
    </message>
    <message>
        <source>Fast</source>
        <translation>Schnell</translation>
    </message>
    <message>
        <source>at once</source>
        <translation>sofort</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
</context>
<context>
    <name>EditProgress</name>
    <message>
        <source>Cancelling</source>
        <translation>Wird abgebrochen</translation>
    </message>
    <message>
        <source>Writing the video: %1%</source>
        <translation>Video wird geschrieben: %1 %</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>EditionButtons</name>
    <message>
        <source>Trim</source>
        <translation>Kürzen</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Ton</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Drehung</translation>
    </message>
</context>
<context>
    <name>ErrorView</name>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
</context>
<context>
    <name>KeptLength</name>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>Kept length: %1</source>
        <translation>Behaltene Länge: %1</translation>
    </message>
</context>
<context>
    <name>LeaveQuestion</name>
    <message>
        <source>Discard the changes?</source>
        <translation>Änderungen verwerfen?</translation>
    </message>
    <message>
        <source>The video stays as it was.</source>
        <translation>Das Video bleibt, wie es war.</translation>
    </message>
    <message>
        <source>Keep editing</source>
        <translation>Weiter bearbeiten</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Verwerfen</translation>
    </message>
</context>
<context>
    <name>PlayButton</name>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
</context>
<context>
    <name>PlayheadLine</name>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
</context>
<context>
    <name>ProgressSpinner</name>
    <message>
        <source>Editing</source>
        <translation>Wird bearbeitet</translation>
    </message>
</context>
<context>
    <name>ResetButton</name>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
</context>
<context>
    <name>Rotation</name>
    <message>
        <source>Rotate left</source>
        <translation>Nach links drehen</translation>
    </message>
    <message>
        <source>Rotate right</source>
        <translation>Nach rechts drehen</translation>
    </message>
</context>
<context>
    <name>SoundDragger</name>
    <message>
        <source>Volume %1%</source>
        <translation>Lautstärke %1 %</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stummschalten</translation>
    </message>
    <message>
        <source>Unmute</source>
        <translation>Ton einschalten</translation>
    </message>
</context>
<context>
    <name>SoundPicture</name>
    <message>
        <source>Waveform</source>
        <translation>Wellenform</translation>
    </message>
    <message>
        <source>No sound</source>
        <translation>Kein Ton</translation>
    </message>
</context>
<context>
    <name>TrimHandle</name>
    <message>
        <source>Start</source>
        <translation>Anfang</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Ende</translation>
    </message>
</context>
<context>
    <name>UnauthenticatedView</name>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Authentication required</source>
        <translation>Anmeldung erforderlich</translation>
    </message>
</context>
<context>
    <name>VideoPlayer</name>
    <message>
        <source>Video</source>
        <translation>Video</translation>
    </message>
</context>
</TS>

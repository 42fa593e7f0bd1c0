<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>Alert</name>
    <message>
        <source>Accept</source>
        <translation>Accepter</translation>
    </message>
    <message>
        <source>ACCEPT</source>
        <translation>ACCEPTER</translation>
    </message>
</context>
<context>
    <name>ControlButtons</name>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Continuer</translation>
    </message>
    <message>
        <source>CONTINUE</source>
        <translation>CONTINUER</translation>
    </message>
</context>
<context>
    <name>CorvantaSdkVideoEditor</name>
    <message>
        <source>This file can't be read as a video.</source>
        <translation>Ce fichier ne peut pas être lu comme une vidéo.</translation>
    </message>
    <message>
        <source>This video has no length.</source>
        <translation>Cette vidéo n’a pas de durée.</translation>
    </message>
    <message>
        <source>There is no picture in this file.</source>
        <translation>Il n’y a pas d’image dans ce fichier.</translation>
    </message>
    <message>
        <source>The picture can't be shown.</source>
        <translation>L’image ne peut pas être affichée.</translation>
    </message>
    <message>
        <source>An error occurred while editing the video. Please try again.</source>
        <translation>Une erreur est survenue pendant la modification de la vidéo. Veuillez réessayer.</translation>
    </message>
    <message>
        <source>An error occurred. Please try again.</source>
        <translation>Une erreur est survenue. Veuillez réessayer.</translation>
    </message>
</context>
<context>
    <name>CutChoice</name>
    <message>
        <source>A fast cut keeps no picture of this range.</source>
        <translation>Une coupe rapide ne garde aucune image de cette plage.</translation>
    </message>
    <message>
        <source>A fast cut loses the first %1 s of the picture.</source>
        <translation>Une coupe rapide perd les %1 premières secondes de l’image.</translation>
    </message>
    <message>
        <source>A fast cut starts the picture %1 s late.</source>
        <translation>Une coupe rapide commence l’image %1 s trop tard.</translation>
    </message>
    <message>
        <source>about %1 s</source>
        <translation>environ %1 s</translation>
    </message>
    <message>
        <source>about %1 min</source>
        <translation>environ %1 min</translation>
    </message>
</context>
<context>
    <name>CutQuestion</name>
    <message>
        <source>Exact or fast?</source>
        <translation>Exact ou rapide ?</translation>
    </message>
    <message>
        <source>An exact cut keeps all of it.</source>
        <translation>Une coupe exacte garde tout.</translation>
    </message>
    <message>
        <source>Exact</source>
        <translation>Exact</translation>
    </message>
    <message>
        <source>Fast</source>
        <translation>Rapide</translation>
    </message>
    <message>
        <source>at once</source>
        <translation>aussitôt</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Retour</translation>
    </message>
</context>
<context>
    <name>EditProgress</name>
    <message>
        <source>Cancelling</source>
        <translation>Annulation</translation>
    </message>
    <message>
        <source>Writing the video: %1%</source>
        <translation>Écriture de la vidéo : %1 %</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progression</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
</context>
<context>
    <name>EditionButtons</name>
    <message>
        <source>Trim</source>
        <translation>Couper</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Son</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Rotation</translation>
    </message>
</context>
<context>
    <name>ErrorView</name>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
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
        <translation>Durée gardée : %1</translation>
    </message>
</context>
<context>
    <name>LeaveQuestion</name>
    <message>
        <source>Discard the changes?</source>
        <translation>Abandonner les modifications ?</translation>
    </message>
    <message>
        <source>The video stays as it was.</source>
        <translation>La vidéo reste comme elle était.</translation>
    </message>
    <message>
        <source>Keep editing</source>
        <translation>Continuer à modifier</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Abandonner</translation>
    </message>
</context>
<context>
    <name>PlayButton</name>
    <message>
        <source>Play</source>
        <translation>Lire</translation>
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
        <translation>Modification en cours</translation>
    </message>
</context>
<context>
    <name>ResetButton</name>
    <message>
        <source>Reset</source>
        <translation>Réinitialiser</translation>
    </message>
</context>
<context>
    <name>Rotation</name>
    <message>
        <source>Rotate left</source>
        <translation>Tourner à gauche</translation>
    </message>
    <message>
        <source>Rotate right</source>
        <translation>Tourner à droite</translation>
    </message>
</context>
<context>
    <name>SoundDragger</name>
    <message>
        <source>Volume %1%</source>
        <translation>Volume %1 %</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Couper le son</translation>
    </message>
    <message>
        <source>Unmute</source>
        <translation>Rétablir le son</translation>
    </message>
</context>
<context>
    <name>SoundPicture</name>
    <message>
        <source>Waveform</source>
        <translation>Forme d’onde</translation>
    </message>
    <message>
        <source>No sound</source>
        <translation>Pas de son</translation>
    </message>
</context>
<context>
    <name>TrimHandle</name>
    <message>
        <source>Start</source>
        <translation>Début</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Fin</translation>
    </message>
</context>
<context>
    <name>UnauthenticatedView</name>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
    </message>
    <message>
        <source>Authentication required</source>
        <translation>Authentification requise</translation>
    </message>
</context>
<context>
    <name>VideoPlayer</name>
    <message>
        <source>Video</source>
        <translation>Vidéo</translation>
    </message>
</context>
</TS>

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name>Alert</name>
    <message>
        <source>Accept</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>ACCEPT</source>
        <translation>ACEPTAR</translation>
    </message>
</context>
<context>
    <name>ControlButtons</name>
    <message>
        <source>Close</source>
        <translation>Cerrar</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Continuar</translation>
    </message>
    <message>
        <source>CONTINUE</source>
        <translation>CONTINUAR</translation>
    </message>
</context>
<context>
    <name>CorvantaSdkVideoEditor</name>
    <message>
        <source>This file can't be read as a video.</source>
        <translation>Este archivo no se puede leer como vídeo.</translation>
    </message>
    <message>
        <source>This video has no length.</source>
        <translation>Este vídeo no tiene duración.</translation>
    </message>
    <message>
        <source>There is no picture in this file.</source>
        <translation>En este archivo no hay imagen.</translation>
    </message>
    <message>
        <source>The picture can't be shown.</source>
        <translation>La imagen no se puede mostrar.</translation>
    </message>
    <message>
        <source>An error occurred while editing the video. Please try again.</source>
        <translation>Se ha producido un error al editar el vídeo. Inténtelo de nuevo.</translation>
    </message>
    <message>
        <source>An error occurred. Please try again.</source>
        <translation>Se ha producido un error. Inténtelo de nuevo.</translation>
    </message>
</context>
<context>
    <name>CutChoice</name>
    <message>
        <source>A fast cut keeps no picture of this range.</source>
        <translation>Un corte rápido no conserva ninguna imagen de este tramo.</translation>
    </message>
    <message>
        <source>A fast cut loses the first %1 s of the picture.</source>
        <translation>Un corte rápido pierde los primeros %1 s de imagen.</translation>
    </message>
    <message>
        <source>A fast cut starts the picture %1 s late.</source>
        <translation>Un corte rápido empieza la imagen %1 s tarde.</translation>
    </message>
    <message>
        <source>about %1 s</source>
        <translation>unos %1 s</translation>
    </message>
    <message>
        <source>about %1 min</source>
        <translation>unos %1 min</translation>
    </message>
</context>
<context>
    <name>CutQuestion</name>
    <message>
        <source>Exact or fast?</source>
        <translation>¿Exacto o rápido?</translation>
    </message>
    <message>
        <source>An exact cut keeps all of it.</source>
        <translation>Un corte exacto lo conserva todo.</translation>
    </message>
    <message>
        <source>Exact</source>
        <translation>Exacto</translation>
    </message>
    <message>
        <source>Fast</source>
        <translation>Rápido</translation>
    </message>
    <message>
        <source>at once</source>
        <translation>al momento</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Volver</translation>
    </message>
</context>
<context>
    <name>EditProgress</name>
    <message>
        <source>Cancelling</source>
        <translation>Cancelando</translation>
    </message>
    <message>
        <source>Writing the video: %1%</source>
        <translation>Escribiendo el vídeo: %1 %</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progreso</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
</context>
<context>
    <name>EditionButtons</name>
    <message>
        <source>Trim</source>
        <translation>Recortar</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Sonido</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Giro</translation>
    </message>
</context>
<context>
    <name>ErrorView</name>
    <message>
        <source>Error</source>
        <translation>Error</translation>
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
        <translation>Duración conservada: %1</translation>
    </message>
</context>
<context>
    <name>LeaveQuestion</name>
    <message>
        <source>Discard the changes?</source>
        <translation>¿Descartar los cambios?</translation>
    </message>
    <message>
        <source>The video stays as it was.</source>
        <translation>El vídeo se queda como estaba.</translation>
    </message>
    <message>
        <source>Keep editing</source>
        <translation>Seguir editando</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Descartar</translation>
    </message>
</context>
<context>
    <name>PlayButton</name>
    <message>
        <source>Play</source>
        <translation>Reproducir</translation>
    </message>
</context>
<context>
    <name>PlayheadLine</name>
    <message>
        <source>Position</source>
        <translation>Posición</translation>
    </message>
</context>
<context>
    <name>ProgressSpinner</name>
    <message>
        <source>Editing</source>
        <translation>Editando</translation>
    </message>
</context>
<context>
    <name>ResetButton</name>
    <message>
        <source>Reset</source>
        <translation>Restablecer</translation>
    </message>
</context>
<context>
    <name>Rotation</name>
    <message>
        <source>Rotate left</source>
        <translation>Girar a la izquierda</translation>
    </message>
    <message>
        <source>Rotate right</source>
        <translation>Girar a la derecha</translation>
    </message>
</context>
<context>
    <name>SoundDragger</name>
    <message>
        <source>Volume %1%</source>
        <translation>Volumen %1 %</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Silenciar</translation>
    </message>
    <message>
        <source>Unmute</source>
        <translation>Activar el sonido</translation>
    </message>
</context>
<context>
    <name>SoundPicture</name>
    <message>
        <source>Waveform</source>
        <translation>Forma de onda</translation>
    </message>
    <message>
        <source>No sound</source>
        <translation>Sin sonido</translation>
    </message>
</context>
<context>
    <name>TrimHandle</name>
    <message>
        <source>Start</source>
        <translation>Inicio</translation>
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
        <translation>Error</translation>
    </message>
    <message>
        <source>Authentication required</source>
        <translation>Es necesario iniciar sesión</translation>
    </message>
</context>
<context>
    <name>VideoPlayer</name>
    <message>
        <source>Video</source>
        <translation>Vídeo</translation>
    </message>
</context>
</TS>

# What `cmake --install` writes, by component; debian/rules tells which package takes it:
#   audio               the audio library
#   audio_development   its header and pkg-config file
#   models              the noise model
#   runtime             the module's library; needs audio
#   data                the module's version, which stands in its log records
#   development         headers, CMake package and pkg-config file of the module; needs audio_development
#   editor              the editor's library
#   editor_qml          its QML module
#   editor_development  its headers, CMake targets and pkg-config file
#   ladspa              the audio library's LADSPA plugin; CORVANTA_INSTALL_LADSPADIR is its folder
#   python              the audio library's Python module, where Debian's interpreters look under /usr
#   examples            the terminal host, the window host with its desktop entry, and the sources of all examples
# The prefix may be moved: nothing that is installed knows its own place.
include(CMakePackageConfigHelpers)

set(CORVANTA_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/corvanta-sdk-video)
set(CORVANTA_INSTALL_DATADIR share/corvanta-sdk-video) # where platform/Bundle.cpp looks
set(CORVANTA_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/CorvantaSdkVideo)
set(CORVANTA_INSTALL_PKGCONFIGDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(CORVANTA_INSTALL_EXAMPLESDIR share/doc/corvanta-sdk-video/examples CACHE STRING "Folder for the examples' sources")

# corvanta_install_library(TARGET EXPORT_SET RUNTIME_COMPONENT DEVELOPMENT_COMPONENT INCLUDE_DIRECTORY)
function(corvanta_install_library TARGET EXPORT_SET RUNTIME DEVELOPMENT INCLUDEDIR)
    set_target_properties(${TARGET} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${TARGET} EXPORT ${EXPORT_SET}
        LIBRARY
            DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT ${RUNTIME}
            NAMELINK_COMPONENT ${DEVELOPMENT}
        FILE_SET HEADERS
            DESTINATION ${INCLUDEDIR}
            COMPONENT ${DEVELOPMENT})
endfunction()

# corvanta_install_pkgconfig(NAME COMPONENT)
function(corvanta_install_pkgconfig NAME COMPONENT)
    file(RELATIVE_PATH up /${CORVANTA_INSTALL_PKGCONFIGDIR} /)
    string(REGEX REPLACE "/$" "" PREFIX_FROM_PKGCONFIG "${up}")
    configure_file(cmake/package/${NAME}.pc.in ${PROJECT_BINARY_DIR}/package/${NAME}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/package/${NAME}.pc
        DESTINATION ${CORVANTA_INSTALL_PKGCONFIGDIR} COMPONENT ${COMPONENT})
endfunction()

# corvanta_install_targets_file(EXPORT_SET COMPONENT)
function(corvanta_install_targets_file EXPORT_SET COMPONENT)
    install(EXPORT ${EXPORT_SET} NAMESPACE CorvantaSdkVideo::
        DESTINATION ${CORVANTA_INSTALL_CMAKEDIR} COMPONENT ${COMPONENT})
endfunction()

corvanta_install_library(talvo_audio CorvantaSdkVideoTargets audio audio_development ${CMAKE_INSTALL_INCLUDEDIR})
corvanta_install_library(corvanta_sdk_video CorvantaSdkVideoTargets runtime development ${CORVANTA_INSTALL_INCLUDEDIR})
install(FILES resources/c6.f.s.ced125.tw DESTINATION ${CORVANTA_INSTALL_DATADIR} COMPONENT models)
install(FILES resources/version.properties DESTINATION ${CORVANTA_INSTALL_DATADIR} COMPONENT data)

if(CORVANTA_BUILD_LADSPA)
    if(NOT DEFINED CORVANTA_INSTALL_LADSPADIR)
        set(CORVANTA_INSTALL_LADSPADIR ${CMAKE_INSTALL_LIBDIR}/ladspa)
    endif()
    file(RELATIVE_PATH up /${CORVANTA_INSTALL_LADSPADIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(talvo_noise PROPERTIES INSTALL_RPATH "$ORIGIN/${up}")
    install(TARGETS talvo_noise LIBRARY DESTINATION ${CORVANTA_INSTALL_LADSPADIR} COMPONENT ladspa)
endif()
if(PROJECT_IS_TOP_LEVEL)
    install(DIRECTORY noise_library/python/talvo_audio DESTINATION lib/python3/dist-packages COMPONENT python
        FILES_MATCHING PATTERN "*.py" PATTERN py.typed PATTERN __pycache__ EXCLUDE)
endif()

# The consumer must find the Qt that the editor's headers use.
set(CORVANTA_EDITOR_QT_COMPONENTS)
if(CORVANTA_BUILD_EDITOR)
    get_target_property(links corvanta_sdk_video_editor INTERFACE_LINK_LIBRARIES)
    list(FILTER links INCLUDE REGEX "^Qt6::")
    list(TRANSFORM links REPLACE "^Qt6::" "")
    string(REPLACE ";" " " CORVANTA_EDITOR_QT_COMPONENTS "${links}")
    list(TRANSFORM links PREPEND ", Qt6")
    string(REPLACE ";" "" CORVANTA_EDITOR_QT_PKGCONFIG "${links}")
endif()

if(NOT DEFINED CORVANTA_INSTALL_QMLDIR)
    set(CORVANTA_INSTALL_QMLDIR ${CMAKE_INSTALL_LIBDIR}/qt6/qml) # where nothing goes
endif()
configure_package_config_file(cmake/package/CorvantaSdkVideoConfig.cmake.in
    ${PROJECT_BINARY_DIR}/package/CorvantaSdkVideoConfig.cmake
    INSTALL_DESTINATION ${CORVANTA_INSTALL_CMAKEDIR}
    PATH_VARS CORVANTA_INSTALL_QMLDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/CorvantaSdkVideoConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/package/CorvantaSdkVideoConfig.cmake
    ${PROJECT_BINARY_DIR}/package/CorvantaSdkVideoConfigVersion.cmake
    DESTINATION ${CORVANTA_INSTALL_CMAKEDIR} COMPONENT development)
corvanta_install_targets_file(CorvantaSdkVideoTargets development)
corvanta_install_pkgconfig(talvo_audio audio_development)
corvanta_install_pkgconfig(corvanta-sdk-video development)

if(CORVANTA_BUILD_EDITOR)
    corvanta_install_library(
        corvanta_sdk_video_editor CorvantaSdkVideoEditorTargets editor editor_development ${CORVANTA_INSTALL_INCLUDEDIR})
    corvanta_install_targets_file(CorvantaSdkVideoEditorTargets editor_development)
    corvanta_install_pkgconfig(corvanta-sdk-video-editor editor_development)

    set(module corvanta_sdk_video_editor_plugin)
    file(RELATIVE_PATH up /${CORVANTA_INSTALL_QMLDIR}/CorvantaSdkVideo/Editor /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(${module} PROPERTIES INSTALL_RPATH "$ORIGIN/${up}")
    install(TARGETS ${module}
        LIBRARY DESTINATION ${CORVANTA_INSTALL_QMLDIR}/CorvantaSdkVideo/Editor COMPONENT editor_qml)
    get_target_property(directory corvanta_sdk_video_editor QT_QML_MODULE_OUTPUT_DIRECTORY)
    install(FILES ${directory}/qmldir ${directory}/corvanta_sdk_video_editor.qmltypes
        DESTINATION ${CORVANTA_INSTALL_QMLDIR}/CorvantaSdkVideo/Editor COMPONENT editor_qml)
endif()

if(CORVANTA_BUILD_EXAMPLES)
    set(programs corvanta_host)
    if(TARGET corvanta_editor_host)
        list(APPEND programs corvanta_editor_host)
        set(desktop examples/corvanta_editor_host/desktop/com.corvanta.editor_host)
        install(FILES ${desktop}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT examples)
        install(FILES ${desktop}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT examples)
        install(FILES ${desktop}.svg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT examples)
    endif()
    set_target_properties(${programs} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT examples)
    install(DIRECTORY examples/ DESTINATION ${CORVANTA_INSTALL_EXAMPLESDIR} COMPONENT examples)

    # Where Debian's zsh looks, and where one that was built by hand does.
    set(zsh site-functions)
    if(EXISTS /etc/debian_version)
        set(zsh vendor-completions)
    endif()
    set(CORVANTA_INSTALL_ZSHDIR share/zsh/${zsh} CACHE STRING "Folder for zsh completions under the prefix")
    set(completion examples/corvanta_host/completion)
    install(FILES ${completion}/corvanta_host.bash RENAME corvanta_host
        DESTINATION share/bash-completion/completions COMPONENT examples)
    install(FILES ${completion}/_corvanta_host DESTINATION ${CORVANTA_INSTALL_ZSHDIR} COMPONENT examples)
    install(FILES ${completion}/corvanta_host.fish DESTINATION share/fish/vendor_completions.d COMPONENT examples)
endif()

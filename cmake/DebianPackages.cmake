# `cpack` in a build tree writes one Debian package a component, with what its libraries and programs need found by
# dpkg-shlibdeps and what they start or include named here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvanta-sdk-video)
set(CPACK_PACKAGE_VENDOR Corvanta)
set(CPACK_PACKAGE_CONTACT "Corvanta <sdk-video@corvanta.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/packages)
set(CPACK_THREADS 2)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

# corvanta_debian_package(COMPONENT NAME DESCRIPTION [DEPENDS ...] [RECOMMENDS ...])
macro(corvanta_debian_package COMPONENT NAME DESCRIPTION)
    cmake_parse_arguments(ARG "" "" "DEPENDS;RECOMMENDS" ${ARGN})
    string(TOUPPER ${COMPONENT} upper)
    list(APPEND CPACK_COMPONENTS_ALL ${COMPONENT})
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${NAME})
    set(CPACK_DEBIAN_${upper}_DESCRIPTION ${DESCRIPTION})
    list(JOIN ARG_DEPENDS ", " CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS)
    list(JOIN ARG_RECOMMENDS ", " CPACK_DEBIAN_${upper}_PACKAGE_RECOMMENDS)
endmacro()

set(same "(= ${PROJECT_VERSION})")
set(soname libcorvanta-sdk-video${PROJECT_VERSION_MAJOR})
corvanta_debian_package(runtime ${soname} "Client-side video module: libraries"
    DEPENDS ffmpeg
    RECOMMENDS "corvanta-sdk-video-models ${same}")
corvanta_debian_package(models corvanta-sdk-video-models "Client-side video module: noise model")
set(CPACK_DEBIAN_MODELS_PACKAGE_ARCHITECTURE all)
corvanta_debian_package(development libcorvanta-sdk-video-dev "Client-side video module: headers"
    DEPENDS "${soname} ${same}" libboost1.81-dev)
if(CORVANTA_BUILD_EXAMPLES)
    corvanta_debian_package(examples corvanta-sdk-video-examples "Client-side video module: example programs"
        DEPENDS "${soname} ${same}" "corvanta-sdk-video-models ${same}")
endif()
if(CORVANTA_BUILD_EDITOR)
    set(editor libcorvanta-sdk-video-editor${PROJECT_VERSION_MAJOR})
    corvanta_debian_package(editor ${editor} "Client-side video module: editor"
        DEPENDS
            "${soname} ${same}"
            qml6-module-qtquick qml6-module-qtquick-window qml6-module-qtquick-shapes qml6-module-qtqml-workerscript
            gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-libav fonts-dejavu-core)
    corvanta_debian_package(editor_development libcorvanta-sdk-video-editor-dev
        "Client-side video module: headers of the editor"
        DEPENDS
            "${editor} ${same}" "libcorvanta-sdk-video-dev ${same}"
            qt6-base-dev qt6-declarative-dev qt6-multimedia-dev)
endif()
include(CPack)

# `cmake --build --preset release --target documentation`: the public headers as HTML, in documentation/html.
find_program(DOXYGEN_PROGRAM doxygen)
if(NOT DOXYGEN_PROGRAM)
    return()
endif()

set(headers)
foreach(target talvo_audio corvanta_sdk_video corvanta_sdk_video_editor)
    if(TARGET ${target})
        get_target_property(paths ${target} HEADER_SET)
        get_target_property(directory ${target} SOURCE_DIR)
        foreach(path IN LISTS paths)
            cmake_path(ABSOLUTE_PATH path BASE_DIRECTORY ${directory})
            list(APPEND headers ${path})
        endforeach()
    endif()
endforeach()
list(JOIN headers " " headers)
set(make_pages ${CMAKE_COMMAND} -E env
    CORVANTA_PUBLIC_HEADERS=${headers}
    CORVANTA_DOCUMENTATION=${PROJECT_BINARY_DIR}/documentation
    CORVANTA_SOURCE=${PROJECT_SOURCE_DIR}
    ${DOXYGEN_PROGRAM} ${PROJECT_SOURCE_DIR}/docs/Doxyfile)
add_custom_target(documentation COMMAND ${make_pages} VERBATIM)
if(CORVANTA_BUILD_TESTS)
    add_test(NAME documentation COMMAND ${make_pages})
endif()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/documentation)

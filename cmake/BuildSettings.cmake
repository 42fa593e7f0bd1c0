set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Hardening, where there is optimisation and no sanitizer, which has checks of its own.
include(CheckPIESupported)
check_pie_supported()
set(hardened $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
add_compile_options("$<${hardened}:-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
add_link_options("$<${hardened}:LINKER:-z,relro,-z,now>")

if(CMAKE_CXX_FLAGS MATCHES "fsanitize")
    set(CORVANTA_SANITIZED ON)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# Linked PRIVATE by every target of ours, so that a consumer's build keeps its own warnings.
add_library(corvanta_warnings INTERFACE)
target_compile_options(corvanta_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
    # GCC 12 warns falsely about "text" + std::string when it inlines both (its bug 105651).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    # Part of Clang's -Wconversion, and not of GCC's.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)

# Keeps all but our own names out of a library's interface.
function(corvanta_export_own_names TARGET)
    set(map ${PROJECT_SOURCE_DIR}/cmake/exported_names.map)
    set_property(TARGET ${TARGET} APPEND PROPERTY LINK_DEPENDS ${map})
    target_link_options(${TARGET} PRIVATE LINKER:--version-script=${map})
endfunction()

# Resources lie beside the libraries' folder, here as where they are installed.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/share)
file(CREATE_LINK ${PROJECT_SOURCE_DIR}/resources ${CMAKE_BINARY_DIR}/share/corvanta-sdk-video SYMBOLIC)

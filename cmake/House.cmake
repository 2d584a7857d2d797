# The rules that every target of ours follows: language, warnings, sanitizers, one light precompiled header.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})

set(NORVANE_SANITIZE "" CACHE STRING "Sanitizers, comma separated: address,undefined or thread")

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE})
endif()

add_library(houseRules INTERFACE)
target_include_directories(houseRules INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(houseRules INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
target_compile_definitions(houseRules INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_USE_QSTRINGBUILDER NORVANE_VERSION="${PROJECT_VERSION}")
if(NORVANE_SANITIZE)
    target_compile_options(houseRules INTERFACE
        -fsanitize=${NORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        -Wno-maybe-uninitialized) # instrumented code of std::optional raises it falsely
    target_link_options(houseRules INTERFACE -fsanitize=${NORVANE_SANITIZE})
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_definitions(houseRules INTERFACE _FORTIFY_SOURCE=2 _GLIBCXX_ASSERTIONS)
    target_compile_options(houseRules INTERFACE -fstack-protector-strong)
    target_link_options(houseRules INTERFACE -Wl,-z,relro,-z,now)
endif()

# One precompiled header for all, compiled once: headers, not the optimizer, are what a build of ours costs.
function(nv_prepare_precompiled_header)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/precompiled.cpp CONTENT "// A target needs a source.\n")
    add_library(precompiled OBJECT ${CMAKE_BINARY_DIR}/precompiled.cpp)
    target_link_libraries(precompiled PRIVATE houseRules Qt6::Widgets)
    target_precompile_headers(precompiled PRIVATE
        <QAbstractItemModel> <QByteArray> <QDateTime> <QHash> <QImage> <QString> <QStringList> <QTimer> <QWidget>
        <algorithm> <functional> <memory> <optional> <string> <vector>)
endfunction()

# nv_library(name FILES a.cpp … [PUBLIC lib …] [PRIVATE lib …]): one room of the house.
function(nv_library name)
    cmake_parse_arguments(ARG "" "" "FILES;PUBLIC;PRIVATE" ${ARGN})
    if(NOT TARGET precompiled)
        nv_prepare_precompiled_header()
    endif()
    set(present "")
    foreach(file IN LISTS ARG_FILES)
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${file})
            list(APPEND present ${file})
        endif()
    endforeach()
    if(NOT present)
        set(present ${CMAKE_BINARY_DIR}/precompiled.cpp)
    endif()
    add_library(${name} STATIC ${present})
    target_link_libraries(${name} PUBLIC houseRules Qt6::Core Qt6::Gui Qt6::Widgets ${ARG_PUBLIC}
        PRIVATE ${ARG_PRIVATE})
    target_precompile_headers(${name} REUSE_FROM precompiled)
endfunction()

# nv_executable(name FILES a.cpp … LIBRARIES lib …)
function(nv_executable name)
    cmake_parse_arguments(ARG "" "" "FILES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_FILES})
    target_link_libraries(${name} PRIVATE houseRules ${ARG_LIBRARIES})
    if(TARGET precompiled)
        target_precompile_headers(${name} REUSE_FROM precompiled)
    endif()
endfunction()

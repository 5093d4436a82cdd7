# One place for what every target of the project is built with.

set(SEALWRIGHT_LIBEXEC ${CMAKE_BINARY_DIR}/libexec/sealwright)
set(SEALWRIGHT_TOOLCHAIN ${SEALWRIGHT_LIBEXEC}/toolchain)

add_library(sealwright_options INTERFACE)
target_compile_options(sealwright_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
target_compile_definitions(sealwright_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_KEYWORDS
    QT_NO_FOREACH
    QT_NO_URL_CAST_FROM_STRING
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(SEALWRIGHT_SANITIZE)
    add_compile_options(-fsanitize=${SEALWRIGHT_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${SEALWRIGHT_SANITIZE})
endif()

# The headers that most sources include are read once. Sources still name each header that they need: with the option
# off they build just the same.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(precompiles ON) # clang takes a precompiled header only under the very same definitions
else()
    set(precompiles OFF)
endif()
option(SEALWRIGHT_PRECOMPILE "Precompile the headers that most sources include" ${precompiles})

# sealwright_precompiled_headers(NAME headers...): has them precompiled, for targets that sealwright_precompile names.
function(sealwright_precompiled_headers name)
    if(SEALWRIGHT_PRECOMPILE)
        add_library(${name} STATIC ${PROJECT_SOURCE_DIR}/cmake/precompiled.cpp)
        set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTORCC OFF)
        target_link_libraries(${name} PRIVATE sealwright_options Qt6::Core)
        target_precompile_headers(${name} PRIVATE ${ARGN})
    endif()
endfunction()

# sealwright_precompile(TARGET NAME): a target that uses Qt has the precompiled headers of that name.
function(sealwright_precompile target name)
    if(SEALWRIGHT_PRECOMPILE)
        target_precompile_headers(${target} REUSE_FROM ${name})
    endif()
endfunction()

set(SEALWRIGHT_COMMON_HEADERS
    <QByteArray> <QDateTime> <QDebug> <QDir> <QFile> <QFileInfo> <QHash> <QJsonArray> <QJsonDocument> <QJsonObject> <QList>
    <QLoggingCategory> <QMap> <QObject> <QProcess> <QRegularExpression> <QSet> <QString> <QStringList> <QTemporaryDir>
    <QTimer> <QUrl> <QVariant>
    <algorithm> <array> <atomic> <chrono> <condition_variable> <cstdint> <functional> <map> <memory> <mutex> <optional>
    <span> <string> <thread> <unordered_map> <utility> <variant> <vector>)

# What only tests are made of is built without optimisation: it runs for moments, and is compiled for minutes.
add_library(sealwright_test_options INTERFACE)
target_compile_options(sealwright_test_options INTERFACE $<$<CONFIG:Release>:-O0;-U_FORTIFY_SOURCE>)

# sealwright_library(NAME sources...): a static library of the project. Include paths start at src/.
function(sealwright_library name)
    add_library(${name} STATIC ${ARGN})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PRIVATE sealwright_options)
    sealwright_precompile(${name} precompiled)
endfunction()

# sealwright_test(NAME sources...): a GoogleTest program, each of whose tests ctest runs by itself. The variable
# SEALWRIGHT_TEST_LABEL gives them a label.
function(sealwright_test name)
    add_executable(${name} ${ARGN})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE sealwright_options sealwright_test_options test_main GTest::gmock)
    sealwright_precompile(${name} precompiled_for_tests)
    if(NOT SEALWRIGHT_PRECOMPILE)
        target_compile_options(${name} PRIVATE -include ${PROJECT_SOURCE_DIR}/tests/support/core.h)
    endif()
    if(SEALWRIGHT_TEST_LABEL)
        set(label LABELS ${SEALWRIGHT_TEST_LABEL}) # an empty one would shift the properties behind it
    endif()
    gtest_discover_tests(${name}
        TEST_PREFIX "${name}."
        DISCOVERY_TIMEOUT 60
        NO_PRETTY_VALUES
        PROPERTIES TIMEOUT 300 ${label} ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

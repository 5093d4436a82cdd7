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

# sealwright_library(NAME sources...): a static library of the project. Include paths start at src/.
function(sealwright_library name)
    add_library(${name} STATIC ${ARGN})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PRIVATE sealwright_options)
endfunction()

# sealwright_test(NAME sources...): a GoogleTest program, each of whose tests ctest runs by itself. The variable
# SEALWRIGHT_TEST_LABEL gives them a label.
function(sealwright_test name)
    add_executable(${name} ${ARGN})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE sealwright_options test_main GTest::gmock)
    if(SEALWRIGHT_TEST_LABEL)
        set(label LABELS ${SEALWRIGHT_TEST_LABEL}) # an empty one would shift the properties behind it
    endif()
    gtest_discover_tests(${name}
        TEST_PREFIX "${name}."
        DISCOVERY_TIMEOUT 60
        NO_PRETTY_VALUES
        PROPERTIES TIMEOUT 300 ${label} ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

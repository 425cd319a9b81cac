# How a folder becomes a target: one library a folder of the core, one test program a folder of tests.

set(MARROWBOX_SANITIZE "" CACHE STRING "Sanitizers for the whole build, as Clang names them")

set(secondsForEveryScreen 600) # a test that goes through all of them in one process
if(MARROWBOX_SANITIZE)
  set(secondsForEveryScreen 3600)
endif()

find_package(Threads REQUIRED)
find_package(OpenSSL REQUIRED)
find_package(CURL REQUIRED)
find_package(Boost 1.81 REQUIRED COMPONENTS json)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(PkgConfig REQUIRED)
pkg_check_modules(ACL REQUIRED IMPORTED_TARGET libacl)
pkg_check_modules(MOUNT REQUIRED IMPORTED_TARGET mount)

add_library(marrowboxBuildSettings INTERFACE)
target_compile_options(marrowboxBuildSettings INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror
  # Every field of a record has a default; naming only the others is how records are written here.
  -Wno-missing-designated-field-initializers -Wno-missing-field-initializers
  # Debug information by line is enough for a stack trace and halves the time to link.
  $<$<CONFIG:Debug>:-gline-tables-only>
  # Qt's headers ask for it, and a precompiled header serves only sources that agree.
  -fPIC
  # Lets ccache reuse a precompiled header that was made at another time.
  "SHELL:-Xclang -fno-pch-timestamp")
target_compile_definitions(marrowboxBuildSettings INTERFACE
  BOOST_ASIO_SEPARATE_COMPILATION BOOST_ASIO_NO_DEPRECATED BOOST_ASIO_DISABLE_BOOST_COROUTINE)
if(MARROWBOX_SANITIZE)
  # Not optimised: that would double the time to build, and shorten the tests by less.
  target_compile_options(marrowboxBuildSettings INTERFACE
    -fsanitize=${MARROWBOX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # Sources that are compiled together see each other's names; the debug build looks for this.
    -Wno-shadow)
  target_link_options(marrowboxBuildSettings INTERFACE -fsanitize=${MARROWBOX_SANITIZE})
endif()
if(MARROWBOX_SANITIZE MATCHES undefined)
  # This check looks at an object through a pipe, and calls it broken in a test that has no descriptor left.
  target_compile_options(marrowboxBuildSettings INTERFACE -fno-sanitize=vptr)
endif()
if(MARROWBOX_SANITIZE MATCHES address) # the fuzz targets are of this build, and see which branches an input takes
  target_compile_options(marrowboxBuildSettings INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(MARROWBOX_SANITIZE MATCHES thread)
  # Asio's own counters end with a fence, which the thread sanitizer does not see; the others it may use do not.
  target_compile_definitions(marrowboxBuildSettings INTERFACE BOOST_ASIO_DISABLE_STD_ATOMIC)
  # For tests that use Qt. It is not built with the sanitizer, which sees neither its locks nor what they order: what Qt
  # does by itself, and what is called from within it, is not looked at.
  set(environmentBesideQt
    "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/Tests/tsan.suppressions:ignore_noninstrumented_modules=1")
endif()

# Lets the sanitizers' builds take a target's sources some at a time as one: what headers and templates cost is then
# paid once for all of them, which halves the time. Names within a folder must not clash for that.
function(marrowbox_compiled_together)
  if(MARROWBOX_SANITIZE)
    set_target_properties(${ARGN} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
  endif()
endfunction()

# Gives a target an include path on which only its own folder stands, under its own name. A target sees the
# folders that it links and no others, so an include against the arrows does not compile.
function(marrowbox_folder_on_include_path target folder)
  set(view ${CMAKE_BINARY_DIR}/include/${folder})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${folder} ${view}/${folder} SYMBOLIC)
  target_include_directories(${target} PUBLIC ${view})
endfunction()

# Proves in the ordinary debug build that each header of a library compiles by itself. A header with a source is the
# first that its source includes; for one without, a source is generated that includes nothing else.
function(marrowbox_headers_compile_alone library prefix folder)
  if(MARROWBOX_SANITIZE OR NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    return()
  endif()
  file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${folder} ${folder}/*.h)
  set(sources)
  foreach(header IN LISTS headers)
    string(REGEX REPLACE "h$" "cpp" ownSource ${folder}/${header})
    if(EXISTS ${ownSource})
      continue()
    endif()
    set(source ${CMAKE_CURRENT_BINARY_DIR}/alone/${prefix}/${header}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${prefix}/${header}\"\n")
    list(APPEND sources ${source})
  endforeach()
  if(sources)
    add_library(${library}Headers OBJECT ${sources})
    target_link_libraries(${library}Headers PRIVATE ${library} marrowboxBuildSettings)
    target_precompile_headers(${library}Headers REUSE_FROM marrowboxPlatform)
  endif()
endfunction()

# marrowbox_library(FOLDER [LINKS target...]): the static library marrowbox<FOLDER> of all sources in FOLDER.
function(marrowbox_library folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINKS")
  set(target marrowbox${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  if(NOT sources) # a folder that is still to come
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE ${arg_LINKS})
    return()
  endif()
  add_library(${target} STATIC ${sources})
  marrowbox_compiled_together(${target})
  marrowbox_folder_on_include_path(${target} ${folder})
  target_link_libraries(${target} PUBLIC ${arg_LINKS} PRIVATE marrowboxBuildSettings)
  if(folder STREQUAL "Platform")
    target_precompile_headers(${target} PRIVATE ${CMAKE_SOURCE_DIR}/CMake/Precompiled.h)
  else()
    target_precompile_headers(${target} REUSE_FROM marrowboxPlatform)
  endif()
  marrowbox_headers_compile_alone(${target} ${folder} ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
endfunction()

# marrowbox_precompiled(TARGET HEADERS header... LINKS target...): headers for others to reuse, built once; those who
# reuse them see no more folders by that.
function(marrowbox_precompiled target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;LINKS")
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "")
  add_library(${target} OBJECT ${source})
  target_link_libraries(${target} PRIVATE ${arg_LINKS} marrowboxBuildSettings)
  target_precompile_headers(${target} PRIVATE ${arg_HEADERS})
endfunction()

# marrowbox_program(NAME SOURCES... LINKS target... [PRECOMPILED target]): an executable of ours, with the house's
# warnings.
function(marrowbox_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "PRECOMPILED" "SOURCES;LINKS")
  if(NOT arg_PRECOMPILED)
    set(arg_PRECOMPILED marrowboxPlatform)
  endif()
  add_executable(${name} ${arg_SOURCES})
  marrowbox_compiled_together(${name})
  target_link_libraries(${name} PRIVATE ${arg_LINKS} marrowboxBuildSettings)
  target_precompile_headers(${name} REUSE_FROM ${arg_PRECOMPILED})
endfunction()

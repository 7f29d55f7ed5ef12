# What every target of the house has in common: language, warnings, hardening, and how libraries
# and tests are declared.
include_guard(GLOBAL)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Programs and DLLs side by side: Windows looks for a DLL beside the program first.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_SHARED_LIBRARY_PREFIX "")
set(CMAKE_IMPORT_LIBRARY_PREFIX "lib")

# Headers of our own are user headers; those of others never raise our warnings.
add_library(house INTERFACE)
target_include_directories(house INTERFACE "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/generated")
target_include_directories(house SYSTEM INTERFACE "${VRUTILS_DEPS}/include" "${VRUTILS_DEPS}/headers")
target_compile_options(house INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror>
  $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector-strong>)
# The C++ runtime is linked in, so that a host needs no DLL but ours; no time stamp, so that equal
# sources give equal bytes.
target_link_options(house INTERFACE -static -fstack-protector-strong
  -Wl,--dynamicbase,--nxcompat,--high-entropy-va,--no-insert-timestamp)
if(VRUTILS_TRAP_UNDEFINED)
  target_compile_definitions(house INTERFACE _GLIBCXX_ASSERTIONS)
  target_compile_options(house INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined -fsanitize-undefined-trap-on-error>)
endif()

# vrutils_measure_coverage(TARGET): counts the lines of this target's own sources.
function(vrutils_measure_coverage target)
  if(VRUTILS_COVERAGE)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:--coverage -fprofile-update=atomic>)
    target_link_options(${target} PUBLIC --coverage)
  endif()
endfunction()

# vrutils_subsystem(NAME SOURCE...): one folder of the library, as objects. The DLL is their sum, and
# tests of private helpers link the same objects.
function(vrutils_subsystem name)
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PUBLIC house VorraneLog)
  target_compile_definitions(${name} PUBLIC VRUTILS_BUILDING JSON_DLL_BUILD)
  vrutils_measure_coverage(${name})
  # A second build of the library has no need to prove again that each source stands alone. What such
  # a source is made of looks to the compiler like headers, whose classes may hold nothing private to
  # one source.
  if(VRUTILS_TRAP_UNDEFINED)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
  endif()
endfunction()

# vrutils_version_resource(TARGET DESCRIPTION): what the file's properties show on Windows.
function(vrutils_version_resource target description)
  set(VERSION_TARGET ${target})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL EXECUTABLE)
    set(VERSION_FILETYPE VFT_APP)
    set(VERSION_FILENAME ${target}.exe)
  else()
    set(VERSION_FILETYPE VFT_DLL)
    set(VERSION_FILENAME ${target}.dll)
  endif()
  set(VERSION_DESCRIPTION "${description}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc" @ONLY)
  target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
endfunction()

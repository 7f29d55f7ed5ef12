# What `cmake --install` lays down: the headers with those of the libraries that they include, the
# import libraries, both DLLs, vrtool, what find_package and pkg-config read, and licence texts.
include(CMakePackageConfigHelpers)

install(TARGETS vrUtils VorraneLog EXPORT vrUtilsTargets
  RUNTIME DESTINATION bin ARCHIVE DESTINATION lib INCLUDES DESTINATION include)
install(TARGETS vrtool RUNTIME DESTINATION bin)

install(DIRECTORY vrUtils DESTINATION include FILES_MATCHING PATTERN "*.h")
install(FILES VorraneLog/VorraneLog.h DESTINATION include/VorraneLog)
install(FILES "${PROJECT_BINARY_DIR}/generated/vrUtils/version.h" DESTINATION include/vrUtils)
# As they lie in the tree, so that the pages' links lead somewhere.
install(DIRECTORY docs DESTINATION share/vrUtils FILES_MATCHING PATTERN "*.md")
install(DIRECTORY examples DESTINATION share/vrUtils
  FILES_MATCHING PATTERN "*.cpp" PATTERN "*.md" PATTERN "*.xsl")
install(DIRECTORY tools/debuggers DESTINATION share/vrUtils)
install(FILES README.md CHANGELOG.md DESTINATION share/vrUtils)

# The public headers include a few of Boost's, and pass JsonCpp on: both come along, so that a host
# needs nothing else. What the compiler reports is the list of them.
install(DIRECTORY "${VRUTILS_DEPS}/include/json" DESTINATION include)
execute_process(
  COMMAND python3 "${PROJECT_SOURCE_DIR}/cmake/needed_headers.py" "${CMAKE_CXX_COMPILER}"
    "${VRUTILS_DEPS}/headers" "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/generated"
    "${VRUTILS_DEPS}/include"
  OUTPUT_VARIABLE needed_headers OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" needed_headers "${needed_headers}")
foreach(header IN LISTS needed_headers)
  get_filename_component(folder "${header}" DIRECTORY)
  install(FILES "${VRUTILS_DEPS}/headers/${header}" DESTINATION "include/${folder}")
endforeach()

# The licences of what stands in the binaries and the headers of others.
set(licences share/licenses/vrUtils)
install(FILES "${VRUTILS_DEPS}/src/libjsoncpp/LICENSE" DESTINATION ${licences} RENAME JsonCpp.txt)
foreach(pair IN ITEMS
    Boost:libboost1.74-dev spdlog:libspdlog-dev fmt:libfmt-dev CLI11:libcli11-dev
    GCC-runtime:gcc-mingw-w64-base mingw-w64-runtime:mingw-w64-x86-64-dev)
  string(REPLACE ":" ";" pair "${pair}")
  list(GET pair 0 name)
  list(GET pair 1 package)
  install(FILES "/usr/share/doc/${package}/copyright" DESTINATION ${licences} RENAME ${name}.txt)
endforeach()

set(package_folder lib/cmake/vrUtils)
install(EXPORT vrUtilsTargets NAMESPACE vrUtils:: DESTINATION ${package_folder})
configure_package_config_file(cmake/vrUtilsConfig.cmake.in
  "${PROJECT_BINARY_DIR}/package/vrUtilsConfig.cmake" INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/vrUtilsConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/package/vrUtilsConfig.cmake"
  "${PROJECT_BINARY_DIR}/package/vrUtilsConfigVersion.cmake" DESTINATION ${package_folder})
configure_file(cmake/vrUtils.pc.in "${PROJECT_BINARY_DIR}/package/vrUtils.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/package/vrUtils.pc" DESTINATION lib/pkgconfig)

# Debug symbols lie beside the binaries; each binary names its own.
install(CODE "
  foreach(binary IN ITEMS vrUtils.dll VorraneLog.dll vrtool.exe)
    execute_process(COMMAND python3 \"${PROJECT_SOURCE_DIR}/cmake/split_symbols.py\"
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/\${binary}\" COMMAND_ERROR_IS_FATAL ANY)
  endforeach()")

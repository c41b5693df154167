# libkiln: the assembler and the checker behind src/library/kiln.h, for programs in C and all that can call it.
add_library(kiln-library OBJECT EXCLUDE_FROM_ALL src/library/assembly.cpp src/library/kiln.cpp src/library/memory_files.cpp)
target_link_libraries(kiln-library PUBLIC kiln-inspect)

option(KILN_LIBRARY "Build libkiln, as a shared and as a static library" OFF)
if(NOT KILN_LIBRARY)
  return()
endif()

# In a folder of their own, as a part of the programs has the same name.
set(libraryFolder ${PROJECT_BINARY_DIR}/library)
file(MAKE_DIRECTORY ${libraryFolder})

# Both show nothing but the functions of kiln.h, so that no name in a program clashes with one in here.
add_library(libkiln SHARED $<TARGET_OBJECTS:kiln-library>)
set_target_properties(libkiln PROPERTIES OUTPUT_NAME kiln VERSION ${PROJECT_VERSION} SOVERSION 0
  LIBRARY_OUTPUT_DIRECTORY ${libraryFolder})
target_link_libraries(libkiln PRIVATE kiln-inspect)
check_linker_flag(CXX -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/libkiln.map hasVersionScript)
if(hasVersionScript)
  target_link_options(libkiln PRIVATE -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/libkiln.map)
endif()

# The static one is a single object in which all other names are local.
set(object ${libraryFolder}/kiln.o)
set(archive ${libraryFolder}/libkiln.a)
if(CMAKE_INTERPROCEDURAL_OPTIMIZATION AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(optimise -O3 -fPIC -flto=auto -flinker-output=nolto-rel)
  if(hasNoGnuUnique)
    list(APPEND optimise -fno-gnu-unique)
  endif()
endif()
add_custom_command(OUTPUT ${archive}
  COMMAND ${CMAKE_CXX_COMPILER} ${optimise} -r -nostdlib -Wl,--force-group-allocation -o ${object}
    $<TARGET_OBJECTS:kiln-library> -Wl,--start-group
    $<TARGET_FILE:kiln-inspect> $<TARGET_FILE:kiln> -Wl,--end-group
  COMMAND ${CMAKE_OBJCOPY} --wildcard --keep-global-symbol=kiln_* ${object}
  COMMAND ${CMAKE_COMMAND} -E rm -f ${archive}
  COMMAND ${CMAKE_AR} rcs ${archive} ${object}
  DEPENDS kiln-library kiln-inspect kiln
  COMMAND_EXPAND_LISTS VERBATIM)
add_custom_target(libkiln-static ALL DEPENDS ${archive})

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
configure_file(cmake/kiln.pc.in ${libraryFolder}/kiln.pc @ONLY)
set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/kiln)
configure_package_config_file(cmake/kilnConfig.cmake.in ${libraryFolder}/kilnConfig.cmake
  INSTALL_DESTINATION ${packageFolder} PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(${libraryFolder}/kilnConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(TARGETS libkiln LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
install(FILES ${archive} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
install(FILES src/library/kiln.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT library)
install(FILES ${libraryFolder}/kiln.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT library)
install(FILES ${libraryFolder}/kilnConfig.cmake ${libraryFolder}/kilnConfigVersion.cmake DESTINATION ${packageFolder}
  COMPONENT library)
install(FILES man/kiln.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT library)

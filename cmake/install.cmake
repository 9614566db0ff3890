# What `cmake --install` puts where: the libraries and the command, the public headers, and what
# find_package and pkg-config read.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/KalimKit)
get_property(KALIM_PARTS GLOBAL PROPERTY KALIM_PARTS)

# kalim_install_library(TARGET FILE): a library whose target is exported in a file of its own, so that
# a host which wants one part need not have what another takes along.
function(kalim_install_library target file)
  install(TARGETS ${target} EXPORT ${file})
  install(EXPORT ${file} NAMESPACE KalimKit:: DESTINATION ${package_folder})
endfunction()

kalim_install_library(KalimKit KalimKitTargets)
foreach(part IN LISTS KALIM_PARTS)
  kalim_install_library(KalimKit-${part} KalimKit-${part}-Targets)
endforeach()

if(TARGET kalimkit)
  # Without libraries of its own to look for, the command is not to look for the system's elsewhere.
  if(BUILD_SHARED_LIBS)
    file(RELATIVE_PATH to_libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(kalimkit PROPERTIES INSTALL_RPATH $ORIGIN/${to_libraries})
  endif()
  install(TARGETS kalimkit)
endif()

install(FILES LICENSE docs/embedding.md docs/extending.md docs/scenarios.md docs/window.md
              docs/documents.md docs/kalim.schema.json docs/recovery.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})

# Those that are listed.
file(STRINGS cmake/headers headers REGEX "^kalimkit/")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/headers)
foreach(header IN LISTS headers)
  if(NOT EXISTS ${PROJECT_SOURCE_DIR}/${header})
    message(FATAL_ERROR "cmake/headers lists ${header}, which is not there")
  endif()
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

set(KALIM_NEEDED_PARTS)
foreach(part IN LISTS KALIM_PARTS)
  get_property(needed GLOBAL PROPERTY KALIM_PARTS_OF_${part})
  if(needed)
    # What others of them need comes first.
    list(REVERSE needed)
    list(JOIN needed " " needed)
    string(APPEND KALIM_NEEDED_PARTS "if(\"${part}\" IN_LIST KalimKit_parts)
  list(PREPEND KalimKit_parts ${needed})
endif()\n")
  endif()
endforeach()
if(KALIM_NEEDED_PARTS)
  string(APPEND KALIM_NEEDED_PARTS "list(REMOVE_DUPLICATES KalimKit_parts)\n")
endif()

set(KALIM_FINDS)
if(NOT BUILD_SHARED_LIBS)
  foreach(part IN LISTS KALIM_PARTS)
    get_property(finds GLOBAL PROPERTY KALIM_FINDS_${part})
    if(finds)
      list(JOIN finds "\n  " finds)
      string(APPEND KALIM_FINDS "if(\"${part}\" IN_LIST KalimKit_parts)\n  ${finds}\nendif()\n")
    endif()
  endforeach()
endif()
configure_package_config_file(cmake/KalimKitConfig.cmake.in ${PROJECT_BINARY_DIR}/KalimKitConfig.cmake
                              INSTALL_DESTINATION ${package_folder})
# Below 1.0 every minor version may break its users.
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatibility SameMinorVersion)
else()
  set(compatibility SameMajorVersion)
endif()
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KalimKitConfigVersion.cmake
                                 COMPATIBILITY ${compatibility})
install(FILES ${PROJECT_BINARY_DIR}/KalimKitConfig.cmake
              ${PROJECT_BINARY_DIR}/KalimKitConfigVersion.cmake
        DESTINATION ${package_folder})

# A file for pkg-config each, which finds the rest from its own place. A static library leaves it to
# the program to link what it needs itself.
file(RELATIVE_PATH to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")
function(kalim_install_pc file library requires needed flags)
  list(TRANSFORM needed PREPEND kalimkit-)
  list(JOIN needed " " needed)
  list(JOIN flags " " flags)
  configure_file(cmake/kalimkit.pc.in ${PROJECT_BINARY_DIR}/${file}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${file}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
kalim_install_pc(kalimkit KalimKit "" "" "")
foreach(part IN LISTS KALIM_PARTS)
  get_property(needed GLOBAL PROPERTY KALIM_PARTS_OF_${part})
  get_property(flags GLOBAL PROPERTY KALIM_FLAGS_${part})
  kalim_install_pc(kalimkit-${part} KalimKit-${part} kalimkit "${needed}" "${flags}")
endforeach()

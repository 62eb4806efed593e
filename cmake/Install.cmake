# What `cmake --install` installs: the library, the headers of everything that it exports, the reference
# configuration, and what a program needs to find them by find_package(pm_limited_support). The native package
# has the simulated Windows too: its library, its headers, and the width of wchar_t as a compile option for its
# users.
#
# Component "library" is what find_package needs; the rest belongs to component "programs".
include(CMakePackageConfigHelpers)

set(plugin_sources ${PROJECT_SOURCE_DIR}/platform_abstraction_layer/platform_abstraction_layer_windows/src/plugins/pm_limited_support)
set(simulated_sources ${PROJECT_SOURCE_DIR}/platform_abstraction_layer/platform_abstraction_layer_simulated)

# The headers of what is exported, and those that they include.
set(public_headers
  agents/BatAgent.h
  agents/CpuAgent.h
  agents/DevMgr.h
  agents/DisplayAgent.h
  agents/DriverRecords.h
  agents/DspxAgent.h
  agents/EblTuner.h
  agents/EcAgent.h
  agents/HwSBX.h
  agents/HwXA.h
  agents/LanAgent.h
  agents/OrvlDrvMgr.h
  agents/OsWin.h
  foundation/Api.h
  foundation/InterProcessBoard.h
  foundation/OrvlBase.h
  foundation/OrvlCfg.h
  foundation/OrvlProfile.h
  foundation/PowerProfile.h
  foundation/Results.h
  foundation/Text.h
  plugin/Commands.h
  plugin/HostRecords.h
  plugin/PluginExports.h
  plugin/PluginHelper.h
  plugin/WireRecords.h
  scheme/PwrSet.h
  scheme/SchemeEx.h)
foreach(header IN LISTS public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${plugin_sources}/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/pm_limited_support/${folder} COMPONENT library)
endforeach()

target_compile_features(pm_limited_support PUBLIC cxx_std_20)
set(installed_libraries pm_limited_support)
if(NOT WIN32)
  list(APPEND installed_libraries simulated_platform)
  set_target_properties(${installed_libraries} PROPERTIES INSTALL_RPATH $ORIGIN)
  install(DIRECTORY ${simulated_sources}/include/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/pm_limited_support/windows COMPONENT library)
endif()
install(TARGETS ${installed_libraries} EXPORT pm_limited_support COMPONENT library)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/pm_limited_support)
install(EXPORT pm_limited_support FILE pm_limited_supportConfig.cmake NAMESPACE pm_limited_support::
  DESTINATION ${package_folder} COMPONENT library)
write_basic_package_version_file(pm_limited_supportConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/pm_limited_supportConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT library)

file(GLOB reference_files ${PROJECT_SOURCE_DIR}/installation/*.ini)
if(WIN32)
  # The layout that install.cmd expects.
  file(GLOB commands ${PROJECT_SOURCE_DIR}/installation/*.cmd)
  install(FILES ${commands} ${PROJECT_SOURCE_DIR}/installation/README.txt DESTINATION . COMPONENT programs)
  install(FILES ${reference_files} DESTINATION cfg COMPONENT programs)
else()
  install(FILES ${reference_files} DESTINATION ${CMAKE_INSTALL_DATADIR}/pm_limited_support COMPONENT programs)
endif()
foreach(program IN ITEMS trxhost orvlservice notebook hardware_tour)
  if(TARGET ${program})
    if(NOT WIN32)
      set_target_properties(${program} PROPERTIES INSTALL_RPATH $ORIGIN/../${CMAKE_INSTALL_LIBDIR})
    endif()
    install(TARGETS ${program} COMPONENT programs)
  endif()
endforeach()

# `cpack` makes one zip of everything. The product's also has the documents for integrators, and examples that
# build from the zip alone.
if(WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/installation.md ${PROJECT_SOURCE_DIR}/docs/requests.md
    DESTINATION docs COMPONENT programs)
  install(FILES ${CMAKE_TOOLCHAIN_FILE} DESTINATION examples COMPONENT programs)
else()
  install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION . COMPONENT programs)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION docs COMPONENT programs)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/hardware_tour ${PROJECT_SOURCE_DIR}/examples/minimal_host
  DESTINATION examples COMPONENT programs)
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME pm_limited_support)
set(CPACK_PACKAGE_VENDOR Kelvo)
set(CPACK_PACKAGE_FILE_NAME pm_limited_support-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME})
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)
include(CPack)

# What `cmake --install` installs, in components: runtime, modules, programs, web, development,
# documentation.

include(CMakePackageConfigHelpers)
include(package/orvo_modules)

# orvo_find_runtime(TARGET FOLDER): that the target, installed in FOLDER, finds the runtime library.
# Where the system's own loader looks, nothing has to be said.
function(orvo_find_runtime target folder)
  if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    file(RELATIVE_PATH way ${folder} ${CMAKE_INSTALL_FULL_LIBDIR})
    string(REGEX REPLACE "/$" "" way "${way}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${way}")
  endif()
endfunction()

install(TARGETS orvo_runtime EXPORT Orvo LIBRARY
  COMPONENT runtime NAMELINK_COMPONENT development)

foreach(module OrvoMembership OrvoSuite OrvoEmbedded OrvoPlatform)
  if(TARGET ${module})
    orvo_find_runtime(${module} ${CMAKE_INSTALL_FULL_LIBDIR}/orvo)
    orvo_install_module(${module})
  endif()
endforeach()

foreach(program orvo orvo-register orvo-script orvo-web)
  if(TARGET ${program})
    orvo_find_runtime(${program} ${CMAKE_INSTALL_FULL_BINDIR})
    set(component programs)
    if(program STREQUAL "orvo-web")
      set(component web)
    endif()
    install(TARGETS ${program} RUNTIME COMPONENT ${component})
  endif()
endforeach()

# The kit: the C++ client, and what modules of others are made of.
install(TARGETS orvo_client orvo_compat orvo_module orvo_usage orvo_system orvo_text orvo_values
                orvo_registration orvo_interfaces orvo_module_parts orvo_recordset
        EXPORT Orvo ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/orvo/static COMPONENT development)
install(EXPORT Orvo NAMESPACE Orvo:: FILE OrvoTargets.cmake COMPONENT development
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvoMembership)
set(ORVO_MODULE_SOURCES ${CMAKE_INSTALL_DATADIR}/orvo/module)
configure_package_config_file(cmake/package/OrvoMembershipConfig.cmake.in
  OrvoMembershipConfig.cmake PATH_VARS ORVO_MODULE_SOURCES CMAKE_INSTALL_BINDIR
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvoMembership)
write_basic_package_version_file(OrvoMembershipConfigVersion.cmake COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH way_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH way_to_headers ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
                                  ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/package/orvo-client.pc.in orvo-client.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OrvoMembershipConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/OrvoMembershipConfigVersion.cmake
              cmake/package/orvo_modules.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvoMembership COMPONENT development)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orvo-client.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(DIRECTORY client/orvo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN "*.h" PATTERN automation.h EXCLUDE)
install(FILES platform/system/automation.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvo COMPONENT development)
# The same header under the name that modules know, for a source that includes both.
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/automation.h "#pragma once\n#include \"orvo/automation.h\"\n")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/automation.h COMPONENT development
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvo/module/platform/system)
install(DIRECTORY platform DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvo/module COMPONENT development
        FILES_MATCHING PATTERN "*.h"
        PATTERN linux EXCLUDE PATTERN windows EXCLUDE PATTERN compat EXCLUDE
        PATTERN network EXCLUDE
        PATTERN automation.h EXCLUDE)
install(DIRECTORY platform/compat/ client/com/ COMPONENT development
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvo/compat)
foreach(contract provider/directory_contract config/configuration_contract common/log_contract
                 auth/filter_contract)
  get_filename_component(folder ${contract} DIRECTORY)
  install(FILES component/${contract}.h COMPONENT development
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvo/module/component/${folder})
endforeach()
install(FILES platform/module/exports.cpp platform/module/exports.map
        DESTINATION ${CMAKE_INSTALL_DATADIR}/orvo/module COMPONENT development)
install(FILES component/server/OrvoMembership.idl component/server/TavikPMMInterfaces.idl
        DESTINATION ${CMAKE_INSTALL_DATADIR}/orvo/idl COMPONENT development)

install(DIRECTORY schema/ DESTINATION ${CMAKE_INSTALL_DATADIR}/orvo/schema COMPONENT modules
  FILES_MATCHING PATTERN "*.schema" PATTERN "*.ldif")
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md LICENSE
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(FILES schema/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/schema COMPONENT documentation)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)

# The manual, and what bash completes.
if(TARGET orvo-manual)
  set(manual ${CMAKE_CURRENT_BINARY_DIR}/host/manual)
  foreach(program orvo orvo-register orvo-script orvo-web)
    set(component programs)
    if(program STREQUAL "orvo-web")
      set(component web)
    endif()
    install(FILES ${manual}/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
            COMPONENT ${component})
    install(FILES ${manual}/completions/${program}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT ${component})
  endforeach()
  install(FILES docs/manual/orvo-web.service.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT web)
endif()
install(FILES docs/manual/orvo-site.ini.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT modules)

# orvo_install_settings(COMPONENT file...): files that are the administrator's once they are there.
function(orvo_install_settings component)
  foreach(file ${ARGN})
    cmake_path(ABSOLUTE_PATH file)
    cmake_path(GET file FILENAME name)
    install(CODE "
      set(folder \"${CMAKE_INSTALL_SYSCONFDIR}/orvo\")
      if(NOT IS_ABSOLUTE \"\${folder}\")
        set(folder \"\${CMAKE_INSTALL_PREFIX}/\${folder}\")
      endif()
      if(NOT EXISTS \"\$ENV{DESTDIR}\${folder}/${name}\")
        file(INSTALL \"${file}\" DESTINATION \"\${folder}\")
      endif()
    " COMPONENT ${component})
  endforeach()
endfunction()
orvo_install_settings(modules host/web/service/site.ini)

# The service, and the site that it serves.
if(TARGET orvo-web)
  set(service host/web/service)
  orvo_install_settings(web ${service}/web.conf)
  configure_file(${service}/orvo-web.service.in orvo-web.service @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orvo-web.service DESTINATION lib/systemd/system
          COMPONENT web)
  install(FILES ${service}/orvo-web.sysusers DESTINATION lib/sysusers.d RENAME orvo-web.conf
          COMPONENT web)
  install(FILES ${service}/orvo-web.tmpfiles DESTINATION lib/tmpfiles.d RENAME orvo-web.conf
          COMPONENT web)
  install(FILES ${service}/orvo-web.logrotate DESTINATION ${CMAKE_INSTALL_SYSCONFDIR}/logrotate.d
          RENAME orvo-web COMPONENT web)
  install(DIRECTORY examples/shop DESTINATION ${CMAKE_INSTALL_DATADIR}/orvo COMPONENT web
          PATTERN visit EXCLUDE PATTERN README.md EXCLUDE)
  install(DIRECTORY examples/monitoring DESTINATION ${CMAKE_INSTALL_DATADIR}/orvo COMPONENT web)
endif()

# What `cmake --install` installs, in components: runtime, modules, programs, web, development,
# documentation.

include(CMakePackageConfigHelpers)
include(package/orvo_modules)

# orvo_find_runtime(TARGET FOLDER): that the target, installed in FOLDER, finds the runtime library.
# Where the system's own loader looks, nothing has to be said.
function(orvo_find_runtime target folder)
  if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES)
    file(RELATIVE_PATH way ${folder} ${CMAKE_INSTALL_FULL_LIBDIR})
    string(REGEX REPLACE "/$" "" way "${way}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${way}")
  endif()
endfunction()

install(TARGETS orvo_runtime LIBRARY
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

install(DIRECTORY schema/ DESTINATION ${CMAKE_INSTALL_DATADIR}/orvo/schema COMPONENT modules
  FILES_MATCHING PATTERN "*.schema" PATTERN "*.ldif")
install(FILES README.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)

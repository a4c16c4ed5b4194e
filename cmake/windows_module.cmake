# What a module needs on Windows: its exports, a run time of its own, and resources.

find_program(ORVO_WIDL NAMES widl x86_64-w64-mingw32-widl REQUIRED)

# orvo_windows_module(NAME IDL): finishes the module NAME. IDL is the text of its type library, or
# empty for none.
function(orvo_windows_module name idl)
  set(type_library_line "")
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
  if(idl)
    set(library ${CMAKE_CURRENT_BINARY_DIR}/${name}.tlb)
    add_custom_command(OUTPUT ${library}
      COMMAND ${ORVO_WIDL} -t -o ${library} ${idl}
      DEPENDS ${idl} VERBATIM)
    set(type_library_line "1 TYPELIB \"${library}\"")
    set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS ${library})
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/platform/module/resources.rc.in ${resources} @ONLY)
  target_sources(${name} PRIVATE ${resources} ${PROJECT_SOURCE_DIR}/platform/module/exports.def)
  target_link_options(${name} PRIVATE -static)
endfunction()

# What the programs of the product have in common: one folder, an icon, a manifest, a version.
set(TONEX_PRODUCT ${CMAKE_BINARY_DIR}/sound-editor) # all that belongs together on a user's disk

# tonex_program(TARGET DESCRIPTION ICON [TRUST]): gives a Windows program its resources and its place beside the
# others. TRUST goes into the manifest as it stands.
function(tonex_program target description icon)
    set(trust "${ARGN}")
    set(manifest ${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest)
    set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}_program.rc)
    configure_file(${CMAKE_SOURCE_DIR}/resources/program.manifest.in ${manifest} @ONLY)
    configure_file(${CMAKE_SOURCE_DIR}/resources/program.rc.in ${resources} @ONLY)
    set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${manifest};${icon}")
    target_sources(${target} PRIVATE ${resources})
    add_dependencies(${target} program_icons)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${TONEX_PRODUCT})
endfunction()

# Icons, drawn from the outlines by tools/pictures: the editor's, and one of fewer sizes for what stands beside it.
set(TONEX_ICON ${CMAKE_BINARY_DIR}/tonex.ico)
set(TONEX_SMALL_ICON ${CMAKE_BINARY_DIR}/tonex_small.ico)

# quorlin_bundle(TARGET): makes the executable Quorlin.app, signed ad hoc. The target `dmg` completes
# and signs a copy of it and packs that into a disk image.
set(quorlin_packaging ${CMAKE_CURRENT_LIST_DIR})

function(quorlin_bundle target)
  set(icon ${CMAKE_CURRENT_BINARY_DIR}/Quorlin.icns)
  set(drawing ${PROJECT_SOURCE_DIR}/resources/app-icon.svg)
  add_custom_command(OUTPUT ${icon}
    COMMAND ${quorlin_packaging}/render-icon ${drawing} ${icon}
    DEPENDS ${drawing} ${quorlin_packaging}/render-icon VERBATIM)
  set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  target_sources(${target} PRIVATE ${icon})
  configure_file(${quorlin_packaging}/Info.plist.in Info.plist @ONLY)
  set_target_properties(${target} PROPERTIES
    MACOSX_BUNDLE ON
    OUTPUT_NAME Quorlin
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)

  # Signed again whenever something changes that the signature covers, or the script that signs.
  set(finish ${quorlin_packaging}/finish-bundle ${quorlin_packaging}/Quorlin.entitlements)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS
    ${icon} ${CMAKE_CURRENT_BINARY_DIR}/Info.plist ${finish})
  set(symbol)
  if(Qt6_VERSION VERSION_GREATER_EQUAL 6.5) # the first version that asks for permissions
    set(symbol QDarwinMicrophonePermissionRequest)
  endif()
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${finish} $<TARGET_BUNDLE_DIR:${target}> ${symbol} VERBATIM)

  add_custom_target(dmg
    COMMAND ${quorlin_packaging}/package $<TARGET_BUNDLE_DIR:${target}>
      ${PROJECT_BINARY_DIR}/Quorlin-${PROJECT_VERSION}.dmg $<TARGET_FILE:Qt6::qmake>
    DEPENDS ${target} USES_TERMINAL VERBATIM)
endfunction()

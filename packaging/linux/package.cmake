# Installs what accompanies the program on Linux, and makes the Debian package: target "package".
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
find_program(GZIP gzip REQUIRED)
include(GNUInstallDirs)

set(drawing ${PROJECT_SOURCE_DIR}/resources/app-icon.svg)
set(here ${PROJECT_SOURCE_DIR}/packaging/linux)
set(made ${PROJECT_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${made})
foreach(size 16 22 24 32 48 64 128 256 512)
  add_custom_command(OUTPUT ${made}/${size}.png DEPENDS ${drawing}
    COMMAND ${RSVG_CONVERT} --width ${size} --height ${size} --output ${made}/${size}.png ${drawing})
  list(APPEND outputs ${made}/${size}.png)
  install(FILES ${made}/${size}.png RENAME quorlin.png
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
# Debian wants both compressed, and without a time stamp in the result.
foreach(text quorlin.1 changelog)
  add_custom_command(OUTPUT ${made}/${text}.gz DEPENDS ${here}/${text}
    COMMAND ${GZIP} -9nc ${here}/${text} >${made}/${text}.gz)
  list(APPEND outputs ${made}/${text}.gz)
endforeach()
add_custom_target(quorlin_installed_files ALL DEPENDS ${outputs})

install(FILES ${drawing} RENAME quorlin.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${here}/quorlin.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${here}/org.quorlin.quorlin.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${made}/quorlin.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${made}/changelog.gz ${here}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quorlin)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "Quorlin developers <developers@quorlin.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "call recorder with a local audio library")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Quorlin records both sides of a call, what the computer plays and the
microphone, into one Opus, MP3 or WAV file. Recordings are found, played,
exported and repaired in a library that never leaves the computer.
The window is in Russian.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# shlibdeps can't see these: the program starts or loads them at run time.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ffmpeg, libqt6sql6-sqlite")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, pulseaudio | pipewire-pulse")
include(CPack)

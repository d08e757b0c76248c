# The zqv program as a Debian package: the program and its library in one folder, a link to the
# program in the folder of commands, the manual page, shell completions and the notices.
include(GNUInstallDirs)

set(home ${CMAKE_INSTALL_LIBDIR}/zqv)
install(TARGETS zqv RUNTIME DESTINATION ${home})
install(TARGETS MimeEmailZQV LIBRARY DESTINATION ${home})
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packaging)
file(CREATE_LINK ../${home}/zqv ${PROJECT_BINARY_DIR}/packaging/zqv SYMBOLIC)
install(FILES ${PROJECT_BINARY_DIR}/packaging/zqv DESTINATION ${CMAKE_INSTALL_BINDIR})

# Debian requires compressed manual pages. -n omits the time, so that the build is reproducible.
find_program(ZQV_GZIP NAMES gzip REQUIRED)
add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/packaging/zqv.1.gz
  COMMAND ${ZQV_GZIP} -9nc ${PROJECT_SOURCE_DIR}/packaging/zqv.1
    > ${PROJECT_BINARY_DIR}/packaging/zqv.1.gz
  DEPENDS ${PROJECT_SOURCE_DIR}/packaging/zqv.1 VERBATIM)
add_custom_target(manual ALL DEPENDS ${PROJECT_BINARY_DIR}/packaging/zqv.1.gz)
add_dependencies(product manual)
install(FILES ${PROJECT_BINARY_DIR}/packaging/zqv.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
# Completion scripts, with the file names that the shells expect.
set(completions)
foreach(pair bash:zqv zsh:_zqv fish:zqv.fish)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 shell)
  list(GET pair 1 name)
  set(file ${PROJECT_BINARY_DIR}/packaging/${shell}/${name})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packaging/${shell})
  add_custom_command(OUTPUT ${file} COMMAND zqv completion ${shell} > ${file} DEPENDS zqv VERBATIM)
  list(APPEND completions ${file})
endforeach()
add_custom_target(completions ALL DEPENDS ${completions})
add_dependencies(product completions)
install(FILES ${PROJECT_BINARY_DIR}/packaging/bash/zqv
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
install(FILES ${PROJECT_BINARY_DIR}/packaging/zsh/_zqv
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions)
install(FILES ${PROJECT_BINARY_DIR}/packaging/fish/zqv.fish
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d)

install(FILES ${PROJECT_SOURCE_DIR}/docs/schema.json DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/zqv)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/zqv
  RENAME copyright)
install(FILES ${PROJECT_SOURCE_DIR}/THIRD_PARTY.md DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/zqv)

set(CPACK_PACKAGE_NAME zqv)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "the MimeEmailZQV authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "show, extract and convert e-mail messages")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION mail)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "Reads e-mail messages through the MimeEmailZQV plug-in, as an application would: subject,
 addresses, texts, attachments, every header field and the tree of parts.")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)

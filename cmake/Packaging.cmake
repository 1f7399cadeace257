# Where things are installed, and what packages are made of them.
include(GNUInstallDirs)

set(generated ${PROJECT_BINARY_DIR}/generated)
configure_file(docs/varimesh.1.in ${generated}/varimesh.1 @ONLY)
file(WRITE ${generated}/copyright
  "varimesh ${VARIMESH_RELEASE}\n${VARIMESH_ADDRESS}\n\n"
  "Copyright (C) 2026 ${VARIMESH_INSTITUTION}\nAuthors: ${VARIMESH_AUTHORS}\n")

install(TARGETS varimesh RUNTIME)
install(FILES ${generated}/varimesh.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES completions/varimesh.bash RENAME varimesh
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
# Debian's zsh looks below /usr in another folder than below /usr/local.
install(CODE "
  set(folder site-functions)
  if(CMAKE_INSTALL_PREFIX MATCHES \"/usr/?$\")
    set(folder vendor-completions)
  endif()
  file(INSTALL \"${PROJECT_SOURCE_DIR}/completions/_varimesh\"
    DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/zsh/\${folder}\")")
install(PROGRAMS scripts/levels scripts/convert-tree
  DESTINATION ${CMAKE_INSTALL_DATADIR}/varimesh)
# As in the sources, so that links lead from one text to another.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md ${generated}/copyright
  DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN *.md PATTERN *.png)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.wrl)

set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME varimesh)
set(CPACK_PACKAGE_VERSION ${VARIMESH_RELEASE})
set(CPACK_PACKAGE_VENDOR ${VARIMESH_INSTITUTION})
set(CPACK_PACKAGE_CONTACT "${VARIMESH_AUTHORS}, ${VARIMESH_ADDRESS}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "level-of-detail generator for VRML 1.0 scenes")
set(CPACK_PACKAGE_DESCRIPTION
  "Reads a VRML 1.0 scene and writes it again with levels of detail: every face\nset and line set becomes a LOD node that holds the shape itself and ever\ncoarser versions of it, with the distances at which a viewer may switch.")
set(CPACK_PACKAGE_HOMEPAGE_URL ${VARIMESH_ADDRESS})
set(CPACK_STRIP_FILES ON)

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(DPKG_SHLIBDEPS)
if(DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

set(CPACK_SOURCE_GENERATOR TXZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME varimesh-${VARIMESH_RELEASE})
set(CPACK_SOURCE_IGNORE_FILES /\\.git/ ${PROJECT_SOURCE_DIR}/build/ \\.lod\\.wrl$ \\.opt\\.wrl$)
include(CPack)

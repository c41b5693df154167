# cmake --install build: the programs and what belongs to them. tools/package makes its files of it.
include(GNUInstallDirs)

install(TARGETS kiln-as RUNTIME)
install(FILES man/kiln-as.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# The folders stand to each other as they do here, so that links between the documents hold.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents
  FILES_MATCHING REGEX "\\.(md|html|png|svg|asm|inc|lnk|sym|sh|c|py)$")

# When ./dev manual has made it.
install(DIRECTORY ${CMAKE_BINARY_DIR}/manual/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/html COMPONENT documents OPTIONAL)

# Below /usr/local and elsewhere zsh looks into the first folder, Debian's looks into the second one below /usr.
function(installCompletions program)
  install(FILES completions/${program}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME ${program})
  install(FILES completions/_${program} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES completions/_${program} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  install(FILES completions/${program}.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endfunction()
installCompletions(kiln-as)

if(TARGET kiln-check)
  install(TARGETS kiln-check RUNTIME)
  install(FILES man/kiln-check.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  installCompletions(kiln-check)
endif()

if(TARGET kiln-lsp)
  install(TARGETS kiln-lsp RUNTIME)
  install(FILES man/kiln-lsp.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

# Neovim looks below the second folder, Vim below the first one.
install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles)
install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/nvim/site)
# To be copied and extended; kiln-as does not look here by itself.
install(FILES share/kiln-as/atari.sym share/kiln-as/commodore.sym DESTINATION ${CMAKE_INSTALL_DATADIR}/kiln-as)

install(DIRECTORY editors/textmate DESTINATION ${CMAKE_INSTALL_DATADIR}/kiln-as/editors)

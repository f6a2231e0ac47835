# `make package`: a .deb of what `cmake --install` puts under /usr. dpkg-shlibdeps finds the
# libraries the program and its window module link; the rest are plugins Qt loads by name.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME dustmere)
set(CPACK_PACKAGE_VENDOR "Dustmere")
set(CPACK_PACKAGE_CONTACT "${DUSTMERE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION [[Dustmere measures a folder and every sub-folder in it and shows where
the space went as an island whose territories are guarded by monsters that
grow with their size. A rule-based advisor posts cleanup bounties (caches,
downloads, build outputs, big old files); slaying a monster moves that
folder to the Trash: Dustmere never deletes anything itself. Without a
display, dustmere --report prints a text or JSON report.]])
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${DUSTMERE_HOMEPAGE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The window's icons are SVG, read through Qt's SVG plugins.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-color-emoji, adwaita-icon-theme")
include(CPack)

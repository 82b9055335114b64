# Installing (GNUInstallDirs, set up in the top-level list) and the Debian
# package. The programs find everything they need inside themselves (help
# pages and icons are compiled in), so the install prefix can be anything.

install(TARGETS kel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(KEL_BUILD_GUI)
    install(TARGETS kelviewer RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    # `kel` runs it for pictures and finds it from its own folder.
    install(TARGETS kel-render RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/kelviewer)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelviewer)
set(CPACK_PACKAGE_VENDOR "Brennvik AB")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "viewer for questionnaire-survey results in KEL documents")
set(CPACK_PACKAGE_DESCRIPTION
    "KEL Viewer opens the results of a questionnaire survey, delivered as one KEL
document, and shows the answers of a selection of respondents as an overview
sheet, graphs and indexes, within the document's privacy limits. The kel tool
checks and exports the same figures from a shell.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
if(KEL_HOMEPAGE_URL)
    set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${KEL_HOMEPAGE_URL}")
endif()
# The libraries the programs link come from dpkg-shlibdeps. Plugins are
# loaded at run time, so no link line names them: Qt's platform plugins
# (without them the viewer cannot open a window) and Qt SVG's icon engine,
# which draws the window icon.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Pictures and the sheet name Arial, which every office program lays out
# with Arial's letter widths: Liberation Sans has the same widths, and
# without it fontconfig falls back to DejaVu Sans, whose wider digits make
# the sheet's two-digit question numbers run together.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, libqt6svg6, fonts-liberation")
# Qt's own dialogs in Swedish.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)

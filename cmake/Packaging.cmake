# The Debian package: `cpack -G DEB --config <build>/CPackConfig.cmake` makes
# morvane_<version>_<arch>.deb from what `cmake --install` puts under /usr.
set(CPACK_PACKAGE_NAME morvane)
set(CPACK_PACKAGE_VENDOR "Morvane Project")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Morvane Project <packages@morvane.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "desktop video converter with trimming, cropping and effects")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://morvane.org/")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# The release build carries debug information; the package ships the programs without it.
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CPACK_PACKAGE_CONTACT})
# CPack puts the summary above it and indents each line; an empty line parts the paragraphs.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Morvane converts a list of video files, a folder of them or the titles of a
DVD into one folder or into one merged file, with a catalogue of output
formats and device presets. Each file can be trimmed, cropped, adjusted and
given image effects before it converts. An output gets its name only when it
is complete.

The package holds the desktop program (morvane), the terminal converter
(morvane-cli) and two tools for the catalogue and the engine.")
# The libraries come from the programs themselves (dpkg-shlibdeps); the Qt platform plugin for X11
# is part of libqt6gui6. The merge of finished pieces runs the ffmpeg program, which no library
# link names.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ffmpeg")
# Without it a Wayland session shows the window through XWayland.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)

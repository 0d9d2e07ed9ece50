# `cpack -G DEB` in the build directory makes a package for Debian and its kin of what is installed. On which libraries
# it depends, dpkg-shlibdeps reads from the program. The same build gives the same package, byte by byte.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME heapgauge)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "find out where the disk space went")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# Below every revision that a distribution gives a package of its own, which thereby replaces this one.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0varnick1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Varnick Apps <packages@varnick-apps.example>")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://heapgauge.example/")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Without these it runs, and cannot draw text, open items, show them in a file manager or look for a newer version.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "fonts-dejavu-core | fonts-liberation | fonts-noto-core, xdg-utils, dbus-bin | dbus, curl | wget")
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/description CPACK_DEBIAN_PACKAGE_DESCRIPTION)
list(JOIN CPACK_DEBIAN_PACKAGE_DESCRIPTION "\n" CPACK_DEBIAN_PACKAGE_DESCRIPTION)

# For the scripts that CPack runs, which see what begins like this.
set(CPACK_HEAPGAUGE_PACKAGING ${CMAKE_CURRENT_LIST_DIR})
set(CPACK_HEAPGAUGE_RELEASE_DATE ${RELEASE_DATE})
set(CPACK_HEAPGAUGE_DOCUMENTS ${CMAKE_INSTALL_DOCDIR})
set(CPACK_HEAPGAUGE_MANUALS ${CMAKE_INSTALL_MANDIR})
set(CPACK_HEAPGAUGE_ZSH_COMPLETIONS ${HEAPGAUGE_ZSH_COMPLETIONS})
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/release_time.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/layout.cmake)
include(CPack)

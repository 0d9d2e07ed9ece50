# shellcheck shell=bash
# What building, testing and measuring need: package names for each family of systems, and the tools
# and libraries themselves for systems whose package database is not asked. Sourced by bootstrap.

# packages FAMILY GROUP: the names that GROUP needs on top of the groups it builds upon.
packages() {
  case $1-$2 in
    debian-run)
      echo g++ cmake ninja-build pkg-config libx11-dev libxrender-dev libxft-dev libfontconfig-dev \
        fonts-dejavu-core xvfb x11-utils netpbm
      ;;
    debian-test)
      echo libgtest-dev libxtst-dev clang clang-format-14 clang-tidy-14 shellcheck ccache \
        xclip xdotool openbox
      ;;
    debian-bench) echo ncdu gdu ;;
    fedora-run)
      echo gcc-c++ cmake ninja-build pkgconf-pkg-config libX11-devel libXrender-devel libXft-devel \
        fontconfig-devel dejavu-sans-fonts xorg-x11-server-Xvfb xdpyinfo netpbm-progs
      ;;
    fedora-test)
      echo gtest-devel libXtst-devel clang clang-tools-extra ShellCheck ccache xclip xdotool openbox
      ;;
    fedora-bench) echo ncdu gdu ;;
    arch-run)
      echo gcc cmake ninja pkgconf libx11 libxrender libxft fontconfig ttf-dejavu \
        xorg-server-xvfb xorg-xdpyinfo netpbm
      ;;
    arch-test) echo gtest libxtst clang shellcheck ccache xclip xdotool openbox ;;
    arch-bench) echo ncdu gdu ;;
    suse-run)
      echo gcc-c++ cmake ninja pkgconf-pkg-config libX11-devel libXrender-devel libXft-devel \
        fontconfig-devel dejavu-fonts xorg-x11-server-Xvfb xdpyinfo netpbm
      ;;
    suse-test) echo gtest libXtst-devel clang clang-tools ShellCheck ccache xclip xdotool openbox ;;
    suse-bench) echo ncdu gdu ;;
  esac
}

# install_command FAMILY: what the user types before the package names.
install_command() {
  case $1 in
    debian) echo "apt-get install --no-install-recommends" ;;
    fedora) echo "dnf install" ;;
    arch) echo "pacman -S --needed" ;;
    suse) echo "zypper install --no-recommends" ;;
  esac
}

# requirements GROUP: what must answer, whatever the packages are called. A word is a program, a
# word with "pc:" before it a pkg-config module, "font" one scalable font.
requirements() {
  case $1 in
    run)
      echo c++ cmake ninja pkg-config pc:x11 pc:xrender pc:xft pc:fontconfig font \
        Xvfb xdpyinfo pnmtopng
      ;;
    test)
      # Without clang-format 14 and clang-tidy 14 their checks are skipped: few systems still have them.
      echo pc:gtest pc:xtst clang++ shellcheck ccache xclip xdotool openbox
      ;;
    bench) echo ncdu gdu ;;
  esac
}

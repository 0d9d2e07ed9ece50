# shellcheck shell=bash
# What building, testing, measuring and picturing need: package names for each family of systems, and the tools
# and libraries themselves for systems whose package database is not asked. Sourced by bootstrap.

# packages FAMILY GROUP: the names that GROUP needs on top of what running needs.
packages() {
  case $1-$2 in
    debian-run)
      echo g++ cmake ninja-build pkg-config libx11-dev libxrender-dev libxft-dev libfontconfig-dev \
        libpng-dev fonts-dejavu-core xvfb x11-utils netpbm
      ;;
    debian-test)
      echo libgtest-dev libxtst-dev libfuse3-dev fuse3 clang lld shellcheck ccache xclip openbox \
        trash-cli curl wget python3 fonts-noto-color-emoji
      ;;
    debian-screenshots) echo xdotool fonts-noto-color-emoji ;;
    debian-bench) echo libxtst-dev libxdamage-dev ;;
    fedora-run)
      echo gcc-c++ cmake ninja-build pkgconf-pkg-config libX11-devel libXrender-devel libXft-devel \
        fontconfig-devel libpng-devel dejavu-sans-fonts xorg-x11-server-Xvfb xdpyinfo netpbm-progs
      ;;
    fedora-test)
      echo gtest-devel libXtst-devel fuse3-devel fuse3 clang lld ShellCheck ccache xclip openbox \
        trash-cli curl wget python3 dejavu-sans-mono-fonts google-noto-color-emoji-fonts
      ;;
    fedora-screenshots) echo xdotool google-noto-color-emoji-fonts ;;
    fedora-bench) echo libXtst-devel libXdamage-devel ;;
    arch-run)
      echo gcc cmake ninja pkgconf libx11 libxrender libxft fontconfig libpng ttf-dejavu \
        xorg-server-xvfb xorg-xdpyinfo netpbm
      ;;
    arch-test)
      echo gtest libxtst fuse3 clang lld shellcheck ccache xclip openbox trash-cli curl wget python \
        noto-fonts-emoji
      ;;
    arch-screenshots) echo xdotool noto-fonts-emoji ;;
    arch-bench) echo libxtst libxdamage ;;
    suse-run)
      echo gcc-c++ cmake ninja pkgconf-pkg-config libX11-devel libXrender-devel libXft-devel \
        fontconfig-devel libpng16-devel dejavu-fonts xorg-x11-server-Xvfb xdpyinfo netpbm
      ;;
    suse-test)
      echo gtest libXtst-devel fuse3-devel fuse3 clang lld ShellCheck ccache xclip openbox \
        trash-cli curl wget python3 google-noto-coloremoji-fonts
      ;;
    suse-bench) echo libXtst-devel libXdamage-devel ;;
    suse-screenshots) echo xdotool google-noto-coloremoji-fonts ;;
  esac
}

# optional_packages FAMILY GROUP: the names without which GROUP works all the same, since some releases
# have no such packages. A check whose tool is absent is skipped, a rival that is absent has no figures.
optional_packages() {
  case $1-$2 in
    debian-test)
      echo clang-format-14 clang-tidy-14 desktop-file-utils appstream mandoc zsh fish xdg-utils lintian dpkg-dev \
        file debootstrap python3-yaml
      ;;
    suse-bench) echo ncdu gdu xfsprogs btrfsprogs ;;
    *-bench) echo ncdu gdu xfsprogs btrfs-progs ;;
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
      echo c++ cmake ninja pkg-config pc:x11 pc:xrender pc:xft pc:fontconfig pc:libpng font \
        Xvfb xdpyinfo pnmtopng
      ;;
    test) echo pc:gtest pc:xtst clang++ ld.lld shellcheck ccache xclip openbox ;;
    bench) echo pc:xtst pc:xdamage ;;
    screenshots) echo xdotool ;;
  esac
}

# Sourced by tools/try-package and bench/fresh: a bare Debian 12 in a folder of its own, removed when the script ends. Needs
# root and the network of the package registry.

[ "$(id -u)" -eq 0 ] || { echo "Only root can make a bare Debian; run this as root." >&2; exit 1; }

# makeBareDebian: makes it at $root, with this machine's settings of apt.
makeBareDebian() {
  root=$(mktemp -d)
  trap endBareDebian EXIT
  local mirror
  mirror=$(apt-cache policy | sed -n 's|.* \(https\?://[^ ]*\) bookworm/main .*|\1|p' | head -n 1)
  debootstrap --variant=minbase bookworm "$root" "${mirror:-http://deb.debian.org/debian}" >"$root.log" 2>&1 ||
    { tail -n 5 "$root.log" >&2; return 1; }
  [ ! -d /etc/apt/apt.conf.d ] || cp -r /etc/apt/apt.conf.d/. "$root/etc/apt/apt.conf.d/"
  mount -t proc proc "$root/proc"
}

endBareDebian() {
  umount "$root/proc" 2>/dev/null || true
  rm -rf --one-file-system "$root" "$root.log"
}

# inside COMMAND...: runs it there, with none of this shell's variables.
inside() {
  chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}

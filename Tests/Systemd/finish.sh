#!/bin/sh
# Makes the guest's disk $IMAGE from the new system in the folder $1. Its file system begins at $OFFSET and has $SIZE
# bytes.
set -e
cd "$1"
rm -rf var/cache/apt var/lib/apt/lists
# While packages were installed here, nothing could be started.
rm usr/sbin/policy-rc.d
mv sbin/start-stop-daemon.REAL sbin/start-stop-daemon

# Without these units the guest starts faster. No test needs them.
for unit in console-getty.service dev-hugepages.mount dev-mqueue.mount dpkg-db-backup.timer e2scrub_all.timer \
    e2scrub_reap.service fstrim.timer getty.target kmod-static-nodes.service ldconfig.service \
    modprobe@configfs.service modprobe@dm_mod.service modprobe@drm.service modprobe@efi_pstore.service \
    modprobe@fuse.service modprobe@loop.service proc-sys-fs-binfmt_misc.automount remote-fs.target \
    serial-getty@ttyS0.service sys-fs-fuse-connections.mount sys-kernel-config.mount sys-kernel-debug.mount \
    sys-kernel-tracing.mount systemd-ask-password-console.path systemd-ask-password-wall.path \
    systemd-binfmt.service systemd-boot-system-token.service systemd-boot-update.service systemd-firstboot.service \
    systemd-fsck-root.service systemd-hwdb-update.service systemd-journal-catalog-update.service \
    systemd-journal-flush.service systemd-logind.service systemd-machine-id-commit.service \
    systemd-modules-load.service systemd-pstore.service systemd-random-seed.service systemd-remount-fs.service \
    systemd-rfkill.socket systemd-sysctl.service systemd-tmpfiles-clean.timer systemd-update-done.service \
    systemd-update-utmp.service systemd-user-sessions.service; do
    ln -sf /dev/null "etc/systemd/system/$unit"
done
ln -sf /lib/systemd/system/multi-user.target etc/systemd/system/default.target
echo 6f737472656c20677565737420202020 >etc/machine-id
echo guest >etc/hostname

# The job comes in the disk's second partition, as a tar file.
cat >usr/local/sbin/job <<'JOB'
#!/bin/sh
disk=$(findmnt -no SOURCE /)
tar -x -C / -f "${disk%1}2"
exec sh /job/start.sh
JOB
chmod 755 usr/local/sbin/job
cat >etc/systemd/system/job.service <<'UNIT'
[Unit]
Description=The job of the test

[Service]
ExecStart=/usr/local/sbin/job
StandardOutput=tty
StandardError=tty
TTYPath=/dev/ttyS0
UNIT
mkdir -p etc/systemd/system/multi-user.target.wants
ln -s ../job.service etc/systemd/system/multi-user.target.wants/job.service

# The folder also has mounts, which do not belong on the disk.
mkdir "$IMAGE.root"
mount --bind . "$IMAGE.root"
truncate -s 0 "$IMAGE"
mke2fs -q -t ext4 -O ^has_journal -E offset="$OFFSET" -d "$IMAGE.root" "$IMAGE" $((SIZE / 1024))
umount "$IMAGE.root"
rmdir "$IMAGE.root"

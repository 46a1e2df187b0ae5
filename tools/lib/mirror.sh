# shellcheck shell=bash
# Where this machine's apt has the packages of its own release from. Sourced after common.sh.

# own_release: the codename of the release that runs here.
own_release() { sed -n 's/^VERSION_CODENAME=//p' /etc/os-release; }

# main_targets: its sources of main, a line each: address, release, component.
main_targets()
{
    # shellcheck disable=SC2016
    apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' | sort -u |
        awk -v c="$(own_release)" '$3 == "main" && ($2 == c || $2 == c "-updates" || $2 == c "-security")'
}

# mirror: the address that has every release of Debian.
mirror()
{
    local address
    address=$(main_targets | awk -v c="$(own_release)" '$2 == c && !address { address = $1 } END { print address }')
    [ -n "$address" ] || die "this machine's apt knows no mirror of $(own_release)"
    echo "$address"
}

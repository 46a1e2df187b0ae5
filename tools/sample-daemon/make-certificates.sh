#!/bin/sh
# make-certificates.sh DIR: makes, in DIR, certificates for the sample daemon's https, each NAME.pem with NAME.key:
#   ca           a test authority, for callers to trust
#   signed       signed by it for 127.0.0.1
#   self-signed  for 127.0.0.1, signed by nobody else
#   other-name   signed by the authority, for another host
#   expired      signed by the authority for 127.0.0.1, for a time long past
# Needs openssl. They protect nothing: make them where they are used, and keep none.
set -eu

if [ $# -ne 1 ]; then
    echo "usage: $0 DIR" >&2
    exit 2
fi
umask 077
mkdir -p -- "$1"
cd -- "$1"

config=$(mktemp -d "$PWD/openssl.XXXXXX")
trap 'rm -rf -- "$config"' EXIT

# What `openssl ca` asks for; it is the only one of openssl's commands that takes any dates.
cat > "$config/ca.cnf" <<CONFIG
[ca]
default_ca = test
[test]
new_certs_dir = $config
database = $config/index
rand_serial = yes
default_md = sha256
policy = any
unique_subject = no
[any]
commonName = supplied
CONFIG
: > "$config/index"

# Chatter goes to a file, which is shown when something fails.
quietly() {
    if ! openssl "$@" > "$config/log" 2>&1; then
        cat "$config/log" >&2
        exit 1
    fi
}

new_key() {
    quietly genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out "$1.key"
}

self_signed() { # NAME SUBJECT EXTENSION...
    name=$1
    subject=$2
    shift 2
    new_key "$name"
    # No extension but those given: openssl's own configuration file would make every certificate an authority.
    printf '[req]\ndistinguished_name = name\n[name]\n' > "$config/req.cnf"
    set -- "$@" -addext subjectKeyIdentifier=hash
    quietly req -config "$config/req.cnf" -x509 -new -key "$name.key" -days 365 \
        -subj "/CN=$subject" -out "$name.pem" "$@"
}

signed_by_authority() { # NAME SUBJECT ALTERNATIVE-NAME START END
    new_key "$1"
    printf '[req]\ndistinguished_name = name\n[name]\n' > "$config/req.cnf"
    quietly req -config "$config/req.cnf" -new -key "$1.key" -subj "/CN=$2" -out "$config/request"
    cat > "$config/extensions" <<EXTENSIONS
basicConstraints = critical, CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = serverAuth
subjectAltName = $3
authorityKeyIdentifier = keyid
EXTENSIONS
    quietly ca -batch -notext -config "$config/ca.cnf" -cert ca.pem -keyfile ca.key \
        -in "$config/request" -extfile "$config/extensions" -startdate "$4" -enddate "$5" -out "$1.pem"
}

long_ago=20200101000000Z
less_long_ago=20200201000000Z
distant_future=20991231235959Z

self_signed ca "Brimwatch test authority" \
    -addext basicConstraints=critical,CA:TRUE -addext keyUsage=critical,keyCertSign
self_signed self-signed 127.0.0.1 \
    -addext basicConstraints=critical,CA:FALSE -addext subjectAltName=IP:127.0.0.1 \
    -addext extendedKeyUsage=serverAuth
signed_by_authority signed 127.0.0.1 IP:127.0.0.1 "$less_long_ago" "$distant_future"
signed_by_authority other-name elsewhere.invalid DNS:elsewhere.invalid "$less_long_ago" "$distant_future"
signed_by_authority expired 127.0.0.1 IP:127.0.0.1 "$long_ago" "$less_long_ago"

# Fetches a package of the npm registry, for scripts that want a file out of it. To be sourced.

# npm_package URL SHA512 FOLDER   puts the one package that has this sum, base64 as npm tells it, into FOLDER/package.tgz and
# unpacks it there. Prints why and returns 1 when that fails.
npm_package() {
    local url=$1 sha512=$2 folder=$3 found
    curl -fsSL --retry 2 --connect-timeout 10 --max-time 300 -o "$folder/package.tgz" "$url" 2>"$folder/why" || {
        echo "cannot fetch $url ($(tail -n 1 "$folder/why"))"
        return 1
    }
    found=$(sha512sum "$folder/package.tgz" | cut -d ' ' -f 1 | sed 's/../\\x&/g')
    # shellcheck disable=SC2059 # the format is the bytes of the sum
    [ "$(printf "$found" | base64 -w 0)" = "$sha512" ] || {
        echo "$url is not the package that was looked at: its sum differs"
        return 1
    }
    tar -xzf "$folder/package.tgz" -C "$folder"
}

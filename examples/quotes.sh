# quotes.sh README FILE...: every indented line of the sections "Passwords" and "Types of files" must be a line
# of one of the files.
readme=$1
shift
sed -n '/^## Passwords/,/^## The/s/^    //p' "$readme" | {
  lines=0
  while IFS= read -r line; do
    grep -qFx -e "$line" "$@" || { echo "not a verbatim quote: $line"; exit 1; }
    lines=$((lines + 1))
  done
  test "$lines" -gt 8
}

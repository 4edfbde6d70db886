# shellcheck shell=bash
# What a program's --help says of its commands and options; shared by the tests of the manual pages and the completion.

failures=0

# expect WHAT EXPECTED ACTUAL
expect() {
  [ "$2" = "$3" ] && return
  echo "$1 differs (<: expected)"
  diff <(echo "$2") <(echo "$3") || true
  failures=$((failures + 1))
}

# help_commands PROGRAM: one a line, in their order.
help_commands() { "$1" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'; }

# help_options PROGRAM [COMMAND]: every long and short name, sorted.
help_options() {
  "$@" --help | sed -n '/^Options:/,/^$/s/^  \(-[^ ]*\).*/\1/p' | tr ',' '\n' | LC_ALL=C sort
}

# help_environment PROGRAM: the variables that stand for options.
help_environment() { "$1" --help | sed -n 's/.*(Env:\([A-Z_]*\)).*/\1/p' | LC_ALL=C sort; }

#!/usr/bin/env bash
# Makes the tables of docs/accuracy.md and of the levels in docs/effects.md: make_docs.sh [HARMONET_ACCURACY]
#
# They go between the marks "<!-- accuracy -->", "<!-- live -->" and "<!-- levels -->" and the next "<!-- end -->". The
# live table takes a minute and needs a machine that has nothing else to do.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
program=${1:-build/release/bin/harmonet_accuracy}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# insert_table MARK PAGE: puts the table that the program prints for MARK into the page.
insert_table() {
    local mark=$1 page=$2
    "$program" "$mark" >"$work/$mark.md"
    awk -v mark="<!-- $mark -->" -v table="$work/$mark.md" '
        $0 == "<!-- end -->" { inside = 0 }
        !inside { print }
        $0 == mark {
            inside = 1
            print ""
            while ((getline line < table) > 0)
                print line
            print ""
        }' "$page" >"$work/page.md"
    cp "$work/page.md" "$page"
}

insert_table accuracy docs/accuracy.md
insert_table live docs/accuracy.md
insert_table levels docs/effects.md

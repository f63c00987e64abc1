#!/usr/bin/env bash
# Makes the tables of docs/accuracy.md and of the levels in docs/effects.md: make_docs.sh [HARMONET_ACCURACY]
#
# They go between the marks "<!-- accuracy -->", "<!-- live -->" and "<!-- levels -->" and the next "<!-- end -->". The
# live table takes a minute and needs a machine that has nothing else to do.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
program=${1:-build/release/bin/harmonet_accuracy}
. docs/insert_table.sh

insert_table accuracy docs/accuracy.md "$program" accuracy
insert_table live docs/accuracy.md "$program" live
insert_table levels docs/effects.md "$program" levels

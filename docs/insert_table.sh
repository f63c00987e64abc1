# Sourced by the scripts that make the measured tables of the documents, from the root of the tree.

# insert_table MARK PAGE COMMAND...: replaces what is between the line "<!-- MARK -->" of the page and the next
# "<!-- end -->" by the output of the command. The page is unchanged if the command fails.
insert_table() {
    local mark=$1 page=$2 table
    shift 2
    table=$("$@") || return
    TABLE=$table awk -v mark="<!-- $mark -->" '
        $0 == "<!-- end -->" { inside = 0 }
        !inside { print }
        $0 == mark {
            inside = 1
            print "\n" ENVIRON["TABLE"] "\n"
        }' "$page" >"$page.new"
    mv "$page.new" "$page"
}

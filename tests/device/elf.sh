# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# What is written in programs and libraries. To be sourced. READELF names the tool.

elf_class() { "$READELF" --file-header --wide "$1" | sed -n 's/^ *Class: *//p'; }
elf_machine() { "$READELF" --file-header --wide "$1" | sed -n 's/^ *Machine: *//p'; }
elf_type() { "$READELF" --file-header --wide "$1" | sed -n 's/^ *Type: *\([A-Z]*\).*/\1/p'; }
elf_flags() { "$READELF" --file-header --wide "$1" | sed -n 's/^ *Flags: *//p'; }

# elf_needed <file>: the libraries that it asks for, one a line.
elf_needed() { "$READELF" --dynamic --wide "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'; }

# elf_exports <file>: the symbols that it offers to others, one a line.
elf_exports() {
    "$READELF" --dyn-syms --wide "$1" |
        awk '$1 ~ /^[0-9]+:$/ && $5 != "LOCAL" && $7 != "UND" { sub(/@.*/, "", $8); print $8 }' | sort
}

# elf_imports <file>: the symbols that it takes from others, one a line.
elf_imports() {
    "$READELF" --dyn-syms --wide "$1" |
        awk '$1 ~ /^[0-9]+:$/ && $5 != "LOCAL" && $7 == "UND" { sub(/@.*/, "", $8); print $8 }' | sort
}

# elf_dynamic <file>: the dynamic section.
elf_dynamic() { "$READELF" --dynamic --wide "$1"; }

# elf_segments <file>
elf_segments() { "$READELF" --program-headers --wide "$1"; }

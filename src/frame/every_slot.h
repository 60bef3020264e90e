// The initialisers of a table that has a kernel for every slot of its list: `.Name = Name,` in slot order. Included
// inside the braces, once per table, hence no guard. Expects VELA_SUBTABLE_LIST, the list's path, and undefines it.
#define SLOT(number, name, tiers, result, arguments) .name = name,
#define RESERVED(first, count)
#include VELA_SUBTABLE_LIST
#undef SLOT
#undef RESERVED
#undef VELA_SUBTABLE_LIST

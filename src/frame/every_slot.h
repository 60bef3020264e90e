// The initialisers of a table that has a kernel for every slot of its list that tiers fill: `.Name = Name,` in slot
// order. Included inside the braces, once per table, hence no guard. Expects VELA_SUBTABLE_LIST, the list's path, and
// undefines it.
#define SLOT(number, name, tiers, result, arguments) .name = name,
#define SHARED(number, name, kernel, tiers, result, arguments) .name = kernel,
#define PLAIN(number, name, result, arguments)
#define RESERVED(first, count)
#include VELA_SUBTABLE_LIST
#undef SLOT
#undef SHARED
#undef PLAIN
#undef RESERVED
#undef VELA_SUBTABLE_LIST

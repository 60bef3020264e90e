/*
 * Turns one slot list into its sub-table type and slot enumeration. Included once per list, hence no guard.
 * Expects VELA_SUBTABLE (the type's name), VELA_SUBTABLE_LIST (the list's path) and VELA_SUBTABLE_SLOTS (the
 * number of slots), and undefines them.
 *
 * The type's layout is the array of function pointers that the library fills: slot N lies at N pointers from
 * its start, which the assertions prove. Slots without a kernel are members named reservedN.
 *
 * Rows of a list:
 *   SLOT(number, name, tiers, result, (arguments))            a kernel of that name
 *   SHARED(number, name, kernel, tiers, result, (arguments))  a slot of its own name that holds the kernel `kernel`,
 *                                                             which other slots hold too
 *   PLAIN(number, name, result, (arguments))                  a function that is no kernel of a tier: plain code
 *   RESERVED(first, count)                                    slots that are never written
 */
#define VELA_JOIN_(a, b) a##_##b
#define VELA_JOIN(a, b) VELA_JOIN_(a, b)

/* But for the name of the kernel all filled slots are alike. */
#define SHARED(number, name, kernel, tiers, result, arguments) SLOT(number, name, tiers, result, arguments)
#define PLAIN(number, name, result, arguments) SLOT(number, name, PLAIN, result, arguments)

typedef struct VELA_SUBTABLE {
#define SLOT(number, name, tiers, result, arguments) result(VCB_CALL *name) arguments;
#define RESERVED(first, count) VcbKernel reserved##first[count];
#include VELA_SUBTABLE_LIST
#undef SLOT
#undef RESERVED
} VELA_SUBTABLE;

enum {
#define SLOT(number, name, tiers, result, arguments) VELA_JOIN(VELA_SUBTABLE, name) = number,
#define RESERVED(first, count)
#include VELA_SUBTABLE_LIST
#undef SLOT
#undef RESERVED
    VELA_JOIN(VELA_SUBTABLE, slots) = VELA_SUBTABLE_SLOTS
};

#define SLOT(number, name, tiers, result, arguments) \
    VCB_STATIC_ASSERT(offsetof(VELA_SUBTABLE, name) == (number) * sizeof(VcbKernel), "slot out of order: " #name);
#define RESERVED(first, count)                                                                 \
    VCB_STATIC_ASSERT(offsetof(VELA_SUBTABLE, reserved##first) == (first) * sizeof(VcbKernel), \
                      "reserved slots out of order: " #first);
#include VELA_SUBTABLE_LIST
#undef SLOT
#undef RESERVED
VCB_STATIC_ASSERT(sizeof(VELA_SUBTABLE) == VELA_SUBTABLE_SLOTS * sizeof(VcbKernel), "wrong number of slots");

#undef SHARED
#undef PLAIN

#if defined(__cplusplus)
/* The list as data, ended by a row without a name. */
inline constexpr VcbSlotInfo VELA_JOIN(VELA_SUBTABLE, info)[] = {
#define SLOT(number, name, tiers, result, arguments) SHARED(number, name, name, tiers, result, arguments)
#define PLAIN(number, name, result, arguments) SHARED(number, name, name, PLAIN, result, arguments)
#define SHARED(number, name, kernel, tiers, result, arguments) \
    {number, VCB_TIERS_##tiers, #name, #result " " #arguments, #kernel},
#define RESERVED(first, count)
#include VELA_SUBTABLE_LIST
#undef SLOT
#undef SHARED
#undef PLAIN
#undef RESERVED
    {-1, 0, nullptr, nullptr, nullptr}};
#endif

#undef VELA_JOIN
#undef VELA_JOIN_
#undef VELA_SUBTABLE
#undef VELA_SUBTABLE_LIST
#undef VELA_SUBTABLE_SLOTS

/* The binary interface between Vardelwatch and its plugins.
 *
 * A plugin is a shared library in the folder "Plugins" beside the program (Windows: .dll, Linux: .so) that
 * exports one function, GetPluginInfo. It hands over a block that the plugin owns and that both sides write
 * into. This header is all that a plugin needs; it compiles as C11 and as C++11. How to write a plugin:
 * plugins/sdk/README.md.
 *
 * Threads: plugins of type PLUGIN_TYPE_NOTIFY are run on a thread of their own, beside everything else; all
 * other calls come on the program's main thread. A call that is under way when the program ends is waited
 * for, five seconds at most.
 *
 * Exceptions must not leave an entry point. One that does is caught where the system can, and the call
 * counts as done.
 *
 * Layouts. Offsets in bytes, fixed for ever; a plugin must be built for the program's own kind of machine:
 *
 *     PluginInfo        32-bit  64-bit       PluginColumnCall  32-bit  64-bit
 *     reserved               0       0       command                0       0
 *     size                   4       4       format                 4       4
 *     name                   8       8       width                  8       8
 *     description           12      16       column                12      12
 *     type                  16      24       text[300]             16      16
 *     window                20      32       host                 316     320
 *     module                24      40       reserved             320     328
 *     reserved2             28      48       more                 324     332
 *     Init                  32      56       firstHost            328     336
 *     Exit                  36      64       secondHost           332     344
 *     Configure             40      72       order                336     352
 *     Run                   44      80       (whole)              340     360
 *     About                 48      88
 *     data                  52      96       PluginNotifyItem  32-bit  64-bit
 *     dataCount             56     104       kind                   0       0
 *     language              60     108       reserved               4       4
 *     reserved3[260]        64     112       count                  8       8
 *     (whole)              324     376       records               12      16
 *                                            (whole)               16      24
 *
 * PluginHostText and the records of a notification hold no pointers and are the same everywhere.
 */
#ifndef VARDEL_PLUGIN_INTERFACE_H
#define VARDEL_PLUGIN_INTERFACE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define PLUGIN_C extern "C"
#define PLUGIN_LAYOUT(condition) static_assert(condition, #condition)
#else
#define PLUGIN_C
#define PLUGIN_LAYOUT(condition) _Static_assert(condition, #condition)
#endif

/* The compilers of Windows know a calling convention in which the called function removes the argument. */
#if defined(_MSC_VER) || defined(__MINGW32__)
#define PLUGIN_CALL __stdcall
#define PLUGIN_EXPORT PLUGIN_C __declspec(dllexport)
#else
#define PLUGIN_CALL
#define PLUGIN_EXPORT PLUGIN_C __attribute__((visibility("default")))
#endif

struct PluginInfo;

/* Every entry point has this form. The argument is the plugin's own block. The result counts only for
 * PLUGIN_COLUMN_DEFINE, where 0 ends the plugin's columns. */
typedef uint32_t(PLUGIN_CALL* PluginEntryPoint)(struct PluginInfo* info);

/* The one export:  PLUGIN_EXPORT PluginInfo* GetPluginInfo(void)
 * It takes no argument, so that all calling conventions are one to it; without PLUGIN_CALL its name stays
 * undecorated. */
typedef struct PluginInfo* (*GetPluginInfoFunction)(void);
#define PLUGIN_EXPORT_NAME "GetPluginInfo"

enum {
    PLUGIN_TYPE_ALERT = 1,   /* Init, Exit, Configure and About only */
    PLUGIN_TYPE_VIEW = 2,    /* Run from the "Plugins" menu of the host view, on the clicked host */
    PLUGIN_TYPE_NOTIFY = 3,  /* Run with each notification */
    PLUGIN_TYPE_COLUMNS = 99 /* Run from the "Plugins" menu, and for columns of the host view */
};

typedef struct PluginInfo {
    uint32_t reserved;          /* not read by the host */
    uint32_t size;              /* plugin: sizeof(PluginInfo), or the plugin is not taken */
    const char* name;           /* plugin: zero-terminated, stays while the module is loaded */
    const char* description;    /* plugin: the same; both together are its identity */
    int32_t type;               /* plugin: PLUGIN_TYPE_... */
    void* window;               /* host: its window's handle in Configure, About, a menu's Run */
    void* module;               /* host: the plugin's module handle, from before Init on */
    void* reserved2;            /* not touched by the host */
    PluginEntryPoint Init;      /* plugin, or null: called once after loading */
    PluginEntryPoint Exit;      /* plugin, or null: called once before unloading */
    PluginEntryPoint Configure; /* plugin, or null: the button "Configuration" */
    PluginEntryPoint Run;       /* plugin, or null: the plugin's work */
    PluginEntryPoint About;     /* plugin, or null: the button "About" */
    void* data;                 /* host: the call's data; null outside, but after a notification */
    uint32_t dataCount;         /* host: 1 during a call with data, otherwise 0 */
    uint32_t language;          /* host: language id, 9 for the built-in English; may change */
    uint8_t reserved3[260];     /* not touched by the host */
} PluginInfo;

enum { PLUGIN_TEXT_SIZE = 300 };

/* The three texts of a host, each zero-terminated. */
typedef struct PluginHostText {
    char ip[PLUGIN_TEXT_SIZE];
    char mac[PLUGIN_TEXT_SIZE]; /* "xx:xx:xx:xx:xx:xx", lower case */
    char hostName[PLUGIN_TEXT_SIZE];
    uint32_t zero;
} PluginHostText;

/* What is asked of a plugin of type PLUGIN_TYPE_COLUMNS. */
enum {
    PLUGIN_COLUMN_MENU = 0,      /* its item of the menu was clicked; host is set */
    PLUGIN_COLUMN_DEFINE = 256,  /* define the column `column`: fill text, format, width, more; give 1 */
    PLUGIN_COLUMN_COMPARE = 512, /* compare firstHost and secondHost; order goes in and out */
    PLUGIN_COLUMN_TEXT = 1280    /* fill text with the cell of `host` in `column` */
};

typedef struct PluginColumnCall {
    uint32_t command;                 /* PLUGIN_COLUMN_... */
    int32_t format;                   /* out: 0 left, 1 right, 2 centre */
    int32_t width;                    /* out: pixels */
    int32_t column;                   /* in: the plugin's own index of the column, from 0 */
    char text[PLUGIN_TEXT_SIZE];      /* out, zero-terminated */
    const PluginHostText* host;       /* in, for PLUGIN_COLUMN_MENU and PLUGIN_COLUMN_TEXT */
    uint32_t reserved;
    uint32_t more;                    /* out: not 0 when another column follows */
    const PluginHostText* firstHost;  /* in, for PLUGIN_COLUMN_COMPARE */
    const PluginHostText* secondHost; /* in, for PLUGIN_COLUMN_COMPARE */
    int32_t order;                    /* in: low 16 bits the column's index, high 16 bits 1 ascending and
                                         0 descending. out: negative, zero or positive, in that direction */
} PluginColumnCall;

/* Kinds of notifications. */
enum {
    PLUGIN_NOTIFY_NEW_HOSTS = 0,  /* records: PluginNotifyHost */
    PLUGIN_NOTIFY_NEW_SHARES = 1, /* records: PluginNotifyShare */
    PLUGIN_NOTIFY_ACCESSES = 2,   /* records: PluginNotifyAccess */
    PLUGIN_NOTIFY_SPOOFS = 4,     /* records: PluginNotifyHost */
    PLUGIN_NOTIFY_HOST_COUNT = 32 /* no records: `count` is the number of known hosts */
};

/* One notification. It and its records are gone after the call; a plugin copies what it keeps. */
typedef struct PluginNotifyItem {
    uint32_t kind; /* PLUGIN_NOTIFY_... */
    uint32_t reserved;
    uint32_t count; /* of the records */
    void* records;  /* null for PLUGIN_NOTIFY_HOST_COUNT */
} PluginNotifyItem;

/* Texts of records are zero-terminated and zero-filled; a text whose source is empty is empty. */
typedef struct PluginNotifyHost {
    char ip[PLUGIN_TEXT_SIZE];
    char mac[PLUGIN_TEXT_SIZE];
    char hostName[PLUGIN_TEXT_SIZE];
    uint32_t trustState; /* 0 unknown, 1 trusted, 2 distrusted */
} PluginNotifyHost;

typedef struct PluginNotifyShare {
    char ip[PLUGIN_TEXT_SIZE];
    char hostName[PLUGIN_TEXT_SIZE];
    char unused[PLUGIN_TEXT_SIZE]; /* always empty */
    char name[PLUGIN_TEXT_SIZE];
    uint32_t type;
} PluginNotifyShare;

typedef struct PluginNotifyAccess {
    char computer[PLUGIN_TEXT_SIZE];
    char user[PLUGIN_TEXT_SIZE];
    char share[PLUGIN_TEXT_SIZE];
} PluginNotifyAccess;

/* The layout is the interface: what doesn't hold here would not be understood by the other side. */
#define PLUGIN_OFFSET(type, field, in32, in64) \
    PLUGIN_LAYOUT(offsetof(type, field) == (sizeof(void*) == 4 ? (in32) : (in64)))
#define PLUGIN_SIZE(type, in32, in64) PLUGIN_LAYOUT(sizeof(type) == (sizeof(void*) == 4 ? (in32) : (in64)))

PLUGIN_OFFSET(PluginInfo, reserved, 0, 0);
PLUGIN_OFFSET(PluginInfo, size, 4, 4);
PLUGIN_OFFSET(PluginInfo, name, 8, 8);
PLUGIN_OFFSET(PluginInfo, description, 12, 16);
PLUGIN_OFFSET(PluginInfo, type, 16, 24);
PLUGIN_OFFSET(PluginInfo, window, 20, 32);
PLUGIN_OFFSET(PluginInfo, module, 24, 40);
PLUGIN_OFFSET(PluginInfo, reserved2, 28, 48);
PLUGIN_OFFSET(PluginInfo, Init, 32, 56);
PLUGIN_OFFSET(PluginInfo, Exit, 36, 64);
PLUGIN_OFFSET(PluginInfo, Configure, 40, 72);
PLUGIN_OFFSET(PluginInfo, Run, 44, 80);
PLUGIN_OFFSET(PluginInfo, About, 48, 88);
PLUGIN_OFFSET(PluginInfo, data, 52, 96);
PLUGIN_OFFSET(PluginInfo, dataCount, 56, 104);
PLUGIN_OFFSET(PluginInfo, language, 60, 108);
PLUGIN_OFFSET(PluginInfo, reserved3, 64, 112);
PLUGIN_SIZE(PluginInfo, 324, 376);

PLUGIN_OFFSET(PluginHostText, mac, 300, 300);
PLUGIN_OFFSET(PluginHostText, hostName, 600, 600);
PLUGIN_OFFSET(PluginHostText, zero, 900, 900);
PLUGIN_SIZE(PluginHostText, 904, 904);

PLUGIN_OFFSET(PluginColumnCall, command, 0, 0);
PLUGIN_OFFSET(PluginColumnCall, format, 4, 4);
PLUGIN_OFFSET(PluginColumnCall, width, 8, 8);
PLUGIN_OFFSET(PluginColumnCall, column, 12, 12);
PLUGIN_OFFSET(PluginColumnCall, text, 16, 16);
PLUGIN_OFFSET(PluginColumnCall, host, 316, 320);
PLUGIN_OFFSET(PluginColumnCall, reserved, 320, 328);
PLUGIN_OFFSET(PluginColumnCall, more, 324, 332);
PLUGIN_OFFSET(PluginColumnCall, firstHost, 328, 336);
PLUGIN_OFFSET(PluginColumnCall, secondHost, 332, 344);
PLUGIN_OFFSET(PluginColumnCall, order, 336, 352);
PLUGIN_SIZE(PluginColumnCall, 340, 360);

PLUGIN_OFFSET(PluginNotifyItem, kind, 0, 0);
PLUGIN_OFFSET(PluginNotifyItem, reserved, 4, 4);
PLUGIN_OFFSET(PluginNotifyItem, count, 8, 8);
PLUGIN_OFFSET(PluginNotifyItem, records, 12, 16);
PLUGIN_SIZE(PluginNotifyItem, 16, 24);

PLUGIN_OFFSET(PluginNotifyHost, mac, 300, 300);
PLUGIN_OFFSET(PluginNotifyHost, hostName, 600, 600);
PLUGIN_OFFSET(PluginNotifyHost, trustState, 900, 900);
PLUGIN_SIZE(PluginNotifyHost, 904, 904);

PLUGIN_OFFSET(PluginNotifyShare, hostName, 300, 300);
PLUGIN_OFFSET(PluginNotifyShare, unused, 600, 600);
PLUGIN_OFFSET(PluginNotifyShare, name, 900, 900);
PLUGIN_OFFSET(PluginNotifyShare, type, 1200, 1200);
PLUGIN_SIZE(PluginNotifyShare, 1204, 1204);

PLUGIN_OFFSET(PluginNotifyAccess, user, 300, 300);
PLUGIN_OFFSET(PluginNotifyAccess, share, 600, 600);
PLUGIN_SIZE(PluginNotifyAccess, 900, 900);

#endif

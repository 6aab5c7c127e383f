// Names of the icons in the program file, for the resource file, the windows and the tests. Macros, because the resource
// compiler reads them too. tools/make_icons tells what each shows.
#pragma once

#define IDI_PROGRAM 102
#define IDI_VIEW 109
#define IDI_WATCHED 110
#define IDI_EXIT 112
#define IDI_DISTRUSTED 119
#define IDI_TRUSTED 120
#define IDI_UNKNOWN 121
#define IDI_SETTINGS 126
#define IDI_INTERFACE 128
#define IDI_NOTIFICATION 129
#define IDI_STOP 130
#define IDI_START 131
#define IDI_HELP 133
#define IDI_PLUGINS 134
#define IDI_HOST 135
#define IDI_APPLICATIONS 139
#define IDI_INACTIVE 140
#define IDI_ACTIVE 141
#define IDI_FLAG 146
#define IDI_OS_KNOWN 148
#define IDI_ACCESS_BLOCKED 149
#define IDI_ACCESS_DENIED 150
#define IDI_RESOURCES 151
#define IDI_DISK 153
#define IDI_COMPUTER 154
#define IDI_PRINTER 155
#define IDI_REPORTS 157
#define IDI_EVENTLOG 163
#define IDI_SHARE 164
#define IDI_PIPE 165
#define IDI_NO_ACCOUNT 166
#define IDI_SEVERITY_WARNING 167
#define IDI_SYSLOG 168
#define IDI_SEVERITY_ERROR 169
#define IDI_SEVERITY_INFORMATION 170
#define IDI_DEVICE_NAME 220
#define IDI_UPDATE 221
#define IDI_IMPORT_EXPORT 223

// Names of the menu, its popups and commands, for the resource files, the windows and the tests. Macros, because the
// resource compiler reads them too. Each language module holds the same menu.
#pragma once

#define IDM_MENUS 111

// The popups of the menu, by position
#define IDM_TRAY_POPUP 0
#define IDM_VIEW_POPUP 1
#define IDM_RESOURCE_POPUP 2

// Tray menu
#define IDM_START 40001
#define IDM_STOP 40002
#define IDM_SETTINGS 40003
#define IDM_EXIT 40004
#define IDM_ABOUT 40005
#define IDM_VIEW 40006
#define IDM_HELP 40011
#define IDM_SILENT_MODE 40015
#define IDM_RESOURCES 40021
#define IDM_EVENTLOG 40027
#define IDM_SYSLOG 40029
#define IDM_CHECK_UPDATES 40033

// Its submenus, by position
#define IDM_LANGUAGE_POSITION 11
#define IDM_INFORMATIONS_POSITION 12

// View menu
#define IDM_SET_TRUSTED 40012
#define IDM_SET_DISTRUSTED 40013
#define IDM_SET_UNKNOWN 40014
#define IDM_DELETE_HOSTS 40018
#define IDM_SHOW_TRUSTED 40024
#define IDM_SHOW_DISTRUSTED 40025
#define IDM_SHOW_UNKNOWN 40026
#define IDM_DEVICE_URL 40035

// Its submenus, by position
#define IDM_PLUGINS_POSITION 0
#define IDM_APPLICATIONS_POSITION 1
#define IDM_FILTER_POSITION 3

// Resource menu
#define IDM_EXPLORE 40022
#define IDM_SEARCH 40023

// Entries that are made while the program runs: the first and the last number of each kind
#define IDM_PLUGIN_FIRST 20000
#define IDM_PLUGIN_LAST 20999
#define IDM_APPLICATION_FIRST 21000
#define IDM_APPLICATION_LAST 21999
#define IDM_LANGUAGE_FIRST 22000
#define IDM_LANGUAGE_LAST 22499

// Stands in a submenu until its entries are made
#define IDM_DUMMY 40036

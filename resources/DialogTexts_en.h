// The English texts of the templates and the menu, by the names that these use. In UTF-8. Spelling is part of the
// program's look: keep it. "&" stands before the key of a control; within one dialog, within one menu, and for a
// settings page together with the settings dialog's buttons, no key may stand twice (tools/check_languages.py tells).
#pragma once

// Buttons of several dialogs
#define TX_OK "OK"
#define TX_CANCEL "Cancel"
#define TX_CLOSE "Close"
#define TX_BROWSE "..."

// Host view
#define TX_HOST_VIEW_TITLE "Vardelwatch - View"
#define TX_HOST_VIEW_LIST "Known hosts"
#define TX_HOST_VIEW_COUNT "Known host(s) :"
#define TX_HOST_VIEW_AUTO_REFRESH "Autorefresh"
#define TX_HOST_VIEW_UPDATES "Updates available !"
#define TX_HOST_VIEW_REFRESH "Refresh"

// Event log, syslog, network resources
#define TX_EVENT_LOG_TITLE "Vardelwatch - Eventlog"
#define TX_EVENT_LOG_LIST "Events"
#define TX_SYSLOG_TITLE "Vardelwatch - SysLog"
#define TX_SYSLOG_LIST "Syslog messages"
#define TX_RESOURCES_TITLE "Vardelwatch - Resources"
#define TX_RESOURCES_TREE "Hosts and their shares"

// About box; %s takes the version
#define TX_ABOUT_TITLE "About Vardelwatch"
#define TX_ABOUT_VERSION "Version %s"
#define TX_ABOUT_PURPOSE "Watches the local network and tells who is on it."
#define TX_ABOUT_CAPTURE_LIBRARY "Capture library:"

// Updates
#define TX_UPDATES_TITLE "Vardelwatch - Updates"
#define TX_UPDATES_INSTALLED "Installed"
#define TX_UPDATES_OFFERED "Available"
#define TX_UPDATES_PROGRAM_NAME "Vardelwatch :"
#define TX_UPDATES_LIST_NAME "MAC-Address list :"
#define TX_UPDATES_LIST "update &MAC-Address list"
#define TX_UPDATES_PROGRAM "update Vardelwatch"
#define TX_UPDATES_FILES "File(s) :"
#define TX_UPDATES_KILOBYTES "KB loaded :"
#define TX_UPDATES_WEBSITE "&Open website"
#define TX_UPDATES_START "&Update"

// Settings dialog
#define TX_SETTINGS_TITLE "Vardelwatch - Settings"
#define TX_SETTINGS_TREE "Pages"
#define TX_SETTINGS_SAVE "&Save"
#define TX_SETTINGS_SAVE_AND_EXIT "Save &and Exit"
#define TX_SETTINGS_HELP "&Help"

// Page General
#define TX_GENERAL_GROUP_START "Start"
#define TX_GENERAL_AUTO_START "Start &with Windows®"
#define TX_GENERAL_AUTO_CAPTURE "Start &ip detection immediately "
#define TX_GENERAL_GROUP_DETECTION "Detection"
#define TX_GENERAL_DELETE_ARP_CACHE "&Delete arp cache regularly"
#define TX_GENERAL_USE_WMI "&Use WMI to get more informations about remote hosts"
#define TX_GENERAL_SHARE_SEARCH "&Try to find all shares on visible remote hosts"
#define TX_GENERAL_GROUP_UPDATES "Updates"
#define TX_GENERAL_UPDATE_CHECK "Search &regularly for updates"

// Page Interface
#define TX_INTERFACE_ADAPTERS "&Network interface :"
#define TX_INTERFACE_GROUP_DETAILS "Selected interface"
#define TX_INTERFACE_DESCRIPTION "Description :"
#define TX_INTERFACE_IP "IP - Address :"
#define TX_INTERFACE_NET_MASK "Netmask :"
#define TX_INTERFACE_HOST_NAME "Hostname :"
#define TX_INTERFACE_MAC "MAC - Address :"
#define TX_INTERFACE_GROUP_SYSTEM "This computer"
#define TX_INTERFACE_OS_VERSION "OS version :"

// Pages Notification - part 1 and 2
#define TX_NOTIFY_GROUP_NEW_HOST "New hosts"
#define TX_NOTIFY_NEW_HOST "New host &visualization"
#define TX_NOTIFY_NEW_HOST_BALLOON "&Balloon tooltip"
#define TX_NOTIFY_NEW_HOST_WINDOW "Separate &window"
#define TX_NOTIFY_TRUSTED "No notification &for trusted hosts"
#define TX_NOTIFY_GROUP_ACCESS "Remote access"
#define TX_NOTIFY_ACCESS "Re&moteaccess visualization"
#define TX_NOTIFY_ACCESS_IGNORE_LOCALHOST "Ignore &localhost"
#define TX_NOTIFY_ACCESS_IGNORE_TRUSTED "&Ignore trusted hosts"
#define TX_NOTIFY_ACCESS_IGNORE_IPC "Ignore access to $IPC without &username"
#define TX_NOTIFY_ACCESS_BALLOON "Balloon &toottip"
#define TX_NOTIFY_ACCESS_WINDOW "Sepa&rate window"
#define TX_NOTIFY_GROUP_SHARE "New shares"
#define TX_NOTIFY_SHARE "New share visuali&zation"
#define TX_NOTIFY_SHARE_BALLOON "Balloo&n tooltip"
#define TX_NOTIFY_SHARE_WINDOW "Separate win&dow"
#define TX_NOTIFY_GROUP_MAC_SPOOFING "MAC spoofing"
#define TX_NOTIFY_MAC_SPOOFING "&MAC-Address spoofing alert"
#define TX_NOTIFY_MAC_SPOOFING_BALLOON "&Balloon tooltip"
#define TX_NOTIFY_MAC_SPOOFING_WINDOW "Separate &window"

// Page View
#define TX_VIEW_GROUP_COLUMNS "Visible columns"
#define TX_VIEW_MAC "Hardware (&MAC) address"
#define TX_VIEW_LAST_PACKET "&Last received packet"
#define TX_VIEW_HOST_NAME "Hos&tname"
#define TX_VIEW_VENDOR "&Networkcard vendor"
#define TX_VIEW_INFORMATION "Advanced &informations"
#define TX_VIEW_GROUP_ENTRIES "Entries"
#define TX_VIEW_HIDE_SECURE "Hi&de trusted hosts"
#define TX_VIEW_GREYED_OUT "Show entries &greyed out, if they are older than"
#define TX_VIEW_MINUTES "minutes"
#define TX_VIEW_OFFLINE_RED "Show &entries from watched hosts in red, if they are offline"
#define TX_VIEW_GROUP_WINDOW "Window"
#define TX_VIEW_SAVE_WINDOW "Save &window size and position"
#define TX_VIEW_SAVE_COLUMN_WIDTH "Save &column width for session"

// Page Hosts
#define TX_HOSTS_TRUSTED "&Trusted Hosts"
#define TX_HOSTS_DISTRUSTED "Dist&rusted Hosts"
#define TX_HOSTS_WATCHED "&Watched Hosts"
#define TX_HOSTS_ADVANCED "A&dvanced"

// Pages of host lists
#define TX_TRUSTED_LIST "Trusted hosts"
#define TX_DISTRUSTED_LIST "Distrusted hosts"
#define TX_WATCHED_LIST "Watched hosts"
#define TX_LIST_ADD_HOST "Add &new host"
#define TX_LIST_EDIT_HOST "&Edit selected host"
#define TX_LIST_DELETE_HOST "&Delete selected host"
#define TX_WATCHED_SETTINGS "Se&ttings"

// Entry of a host
#define TX_HOST_ENTRY_TITLE "Vardelwatch - Host"
#define TX_HOST_ENTRY_IP "&IP - Address :"
#define TX_HOST_ENTRY_NAME "&Hostname :"

// Watch settings
#define TX_WATCH_TITLE "Vardelwatch - Watch settings"
#define TX_WATCH_METHOD "&Method :"
#define TX_WATCH_INTERVAL "&Interval :"
#define TX_WATCH_SECONDS "seconds"
#define TX_WATCH_NOTIFICATION "&Notification"
#define TX_WATCH_CONFIRM "&Confirm status changes"

// Page Advanced below Hosts
#define TX_NEW_TRUSTED_GROUP "Application to start for new trusted hosts"
#define TX_NEW_TRUSTED_APPLICATION "Appli&cation :"
#define TX_NEW_TRUSTED_PARAMETERS "&Parameter :"
#define TX_NEW_OTHER_GROUP "Application to start for new distrusted or unknown hosts"
#define TX_NEW_OTHER_APPLICATION "Applica&tion :"
#define TX_NEW_OTHER_PARAMETERS "Pa&rameter :"
#define TX_NEW_OTHER_DISTRUSTED "only &distrusted hosts"
#define TX_NEW_OTHER_UNKNOWN "&only unknown hosts"

// Page Applications
#define TX_APPLICATIONS_LIST "Applications"
#define TX_APPLICATIONS_NEW "&New..."
#define TX_APPLICATIONS_CONFIGURE "&Configuration"
#define TX_APPLICATIONS_DELETE "&Delete"

// Entry of an application
#define TX_APPLICATION_ENTRY_TITLE "Vardelwatch - Application settings"
#define TX_APPLICATION_ENTRY_NAME "&Name of application :"
#define TX_APPLICATION_ENTRY_EXECUTABLE "&Executable file :"
#define TX_APPLICATION_ENTRY_PARAMETERS "&Application parameters :"
#define TX_TAGS_GROUP "Possible parameter tags"
#define TX_TAG_IP "IP address of the host"
#define TX_TAG_HOST "Name of the host"
#define TX_TAG_MAC "MAC address of the host"
#define TX_TAG_LOCAL_IP "Local IP address"
#define TX_TAG_LOCAL_HOST "Local hostname"
#define TX_TAG_LOCAL_SUBNET "Local subnet"

// Page Plugins
#define TX_PLUGINS_LIST "Plugins"
#define TX_PLUGINS_RELOAD "&Reload"
#define TX_PLUGINS_CONFIGURE "&Configuration"
#define TX_PLUGINS_ABOUT "A&bout"

// Page Reports
#define TX_REPORTS_GENERATE "&Generate report using a template"
#define TX_REPORTS_TEMPLATE "&Template :"
#define TX_REPORTS_PATH "&Path for generated file(s) :"
#define TX_REPORTS_INTERVAL "&Interval"
#define TX_REPORTS_MINUTES "Minutes :"
#define TX_REPORTS_OPTIONS "Report options"
#define TX_REPORTS_HOSTS "Host(s)"
#define TX_REPORTS_TRUSTED "Trusted host(s)"
#define TX_REPORTS_DISTRUSTED "Distrusted host(s)"
#define TX_REPORTS_UNKNOWN "Unknown host(s)"
#define TX_REPORTS_SHARES "Shares"
#define TX_REPORTS_REMOTE_ACCESS "Remote access"
#define TX_REPORTS_WATCHED "Watched host(s)"

// Page Advanced: the administration accounts
#define TX_ACCOUNTS_GROUP "Administration accounts"
#define TX_ACCOUNTS_LIST "A&ccounts :"
#define TX_ACCOUNTS_ADD "A&dd new account"
#define TX_ACCOUNTS_EDIT "&Edit account"
#define TX_ACCOUNTS_DELETE "Dele&te account"
#define TX_ACCOUNTS_NAME "Account &name :"
#define TX_ACCOUNTS_USER "&Username :"
#define TX_ACCOUNTS_PASSWORD "&Password :"
#define TX_ACCOUNTS_SAVE "Sa&ve"

// Page Eventlog
#define TX_EVENTLOG_USE "&Use Eventlog feature"
#define TX_EVENTLOG_SAVE "Save &events in a file"
#define TX_EVENTLOG_LIMIT_SIZE "&Maximum file size"
#define TX_EVENTLOG_KILOBYTES "KB"

// Page Syslog
#define TX_SYSLOG_USE "&Use syslog feature"
#define TX_SYSLOG_ENTRIES "Entries (0 for unlimited)"
#define TX_SYSLOG_NOTIFICATION "&Notification"
#define TX_SYSLOG_LEVEL "&When level lower equal than :"
#define TX_SYSLOG_BY_FACILITY "&Or facility equal to :"
#define TX_SYSLOG_BY_WORDS "Or &message contains one of the following words (separated by comma) :"
#define TX_SYSLOG_SHOW_WINDOW "Show window and add to &eventlog"
#define TX_SYSLOG_EVENTLOG_ONLY "Add &to eventlog only"

// Page Im-/Export
#define TX_EXPORT_SETTINGS "&Export settings"
#define TX_IMPORT_SETTINGS "&Import settings"

// Tray menu
#define TX_MENU_START "&Start"
#define TX_MENU_STOP "S&top"
#define TX_MENU_SILENT_MODE "Silent &Mode"
#define TX_MENU_VIEW "&View"
#define TX_MENU_RESOURCES "&Resources"
#define TX_MENU_EVENTLOG "Eventl&og"
#define TX_MENU_SYSLOG "S&ysLog"
#define TX_MENU_SETTINGS "Setti&ngs"
#define TX_MENU_LANGUAGE "&Language"
#define TX_MENU_INFORMATIONS "&Informations"
#define TX_MENU_CHECK_UPDATES "&Check for new version..."
#define TX_MENU_ABOUT "&About..."
#define TX_MENU_HELP "&Help (Online)"
#define TX_MENU_EXIT "&Exit"

// View menu
#define TX_MENU_PLUGINS "&Plugins"
#define TX_MENU_APPLICATIONS "&Applications"
#define TX_MENU_FILTER "&Filter"
#define TX_MENU_SHOW_TRUSTED "Show &trusted hosts"
#define TX_MENU_SHOW_DISTRUSTED "Show &distrusted hosts"
#define TX_MENU_SHOW_UNKNOWN "&Show unknown hosts"
#define TX_MENU_DEVICE_URL "&Device URL"
#define TX_MENU_SET_TRUSTED "&Set host(s) as trusted"
#define TX_MENU_SET_DISTRUSTED "Se&t host(s) as distrusted"
#define TX_MENU_SET_UNKNOWN "Set host(s) as &unknown"
#define TX_MENU_DELETE_HOSTS "Delete selected &host(s)"

// Resource menu
#define TX_MENU_EXPLORE "&Explore..."
#define TX_MENU_SEARCH "&Search..."

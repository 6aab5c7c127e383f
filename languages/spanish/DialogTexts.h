// The Spanish texts of the templates and the menu, as DialogTexts_en.h has the English ones. In UTF-8.
#pragma once

// Buttons of several dialogs
#define TX_OK "Aceptar"
#define TX_CANCEL "Cancelar"
#define TX_CLOSE "Cerrar"
#define TX_BROWSE "..."

// Host view
#define TX_HOST_VIEW_TITLE "Vardelwatch - Vista"
#define TX_HOST_VIEW_LIST "Hosts conocidos"
#define TX_HOST_VIEW_COUNT "Host(s) conocido(s):"
#define TX_HOST_VIEW_AUTO_REFRESH "Actualización automática"
#define TX_HOST_VIEW_UPDATES "¡Cambios disponibles!"
#define TX_HOST_VIEW_REFRESH "Actualizar"

// Event log, syslog, network resources
#define TX_EVENT_LOG_TITLE "Vardelwatch - Registro de eventos"
#define TX_EVENT_LOG_LIST "Eventos"
#define TX_SYSLOG_TITLE "Vardelwatch - SysLog"
#define TX_SYSLOG_LIST "Mensajes de syslog"
#define TX_RESOURCES_TITLE "Vardelwatch - Recursos"
#define TX_RESOURCES_TREE "Hosts y sus recursos"

// About box; %s takes the version
#define TX_ABOUT_TITLE "Acerca de Vardelwatch"
#define TX_ABOUT_VERSION "Versión %s"
#define TX_ABOUT_PURPOSE "Observa la red local y muestra quién está en ella."
#define TX_ABOUT_CAPTURE_LIBRARY "Biblioteca de captura:"

// Updates
#define TX_UPDATES_TITLE "Vardelwatch - Actualizaciones"
#define TX_UPDATES_INSTALLED "Instalada"
#define TX_UPDATES_OFFERED "Disponible"
#define TX_UPDATES_PROGRAM_NAME "Vardelwatch:"
#define TX_UPDATES_LIST_NAME "Lista de direcciones MAC:"
#define TX_UPDATES_LIST "actualizar &la lista de direcciones MAC"
#define TX_UPDATES_PROGRAM "actualizar Vardelwatch"
#define TX_UPDATES_FILES "Archivo(s):"
#define TX_UPDATES_KILOBYTES "KB cargados:"
#define TX_UPDATES_WEBSITE "Abrir &sitio web"
#define TX_UPDATES_START "&Actualizar"

// Settings dialog
#define TX_SETTINGS_TITLE "Vardelwatch - Configuración"
#define TX_SETTINGS_TREE "Páginas"
#define TX_SETTINGS_SAVE "&Guardar"
#define TX_SETTINGS_SAVE_AND_EXIT "Guardar &y salir"
#define TX_SETTINGS_HELP "&Ayuda"

// Page General
#define TX_GENERAL_GROUP_START "Inicio"
#define TX_GENERAL_AUTO_START "&Iniciar con Windows®"
#define TX_GENERAL_AUTO_CAPTURE "Iniciar &la detección IP de inmediato "
#define TX_GENERAL_GROUP_DETECTION "Detección"
#define TX_GENERAL_DELETE_ARP_CACHE "&Borrar la caché ARP con regularidad"
#define TX_GENERAL_USE_WMI "&Usar WMI para saber más de los hosts remotos"
#define TX_GENERAL_SHARE_SEARCH "Buscar &todos los recursos de los hosts remotos visibles"
#define TX_GENERAL_GROUP_UPDATES "Actualizaciones"
#define TX_GENERAL_UPDATE_CHECK "Buscar actualizaciones &con regularidad"

// Page Interface
#define TX_INTERFACE_ADAPTERS "&Interfaz de red:"
#define TX_INTERFACE_GROUP_DETAILS "Interfaz elegida"
#define TX_INTERFACE_DESCRIPTION "Descripción:"
#define TX_INTERFACE_IP "Dirección IP:"
#define TX_INTERFACE_NET_MASK "Máscara de red:"
#define TX_INTERFACE_HOST_NAME "Nombre de host:"
#define TX_INTERFACE_MAC "Dirección MAC:"
#define TX_INTERFACE_GROUP_SYSTEM "Este equipo"
#define TX_INTERFACE_OS_VERSION "Versión del sistema:"

// Pages Notification - part 1 and 2
#define TX_NOTIFY_GROUP_NEW_HOST "Hosts nuevos"
#define TX_NOTIFY_NEW_HOST "Mostrar &hosts nuevos"
#define TX_NOTIFY_NEW_HOST_BALLOON "Glo&bo"
#define TX_NOTIFY_NEW_HOST_WINDOW "&Ventana separada"
#define TX_NOTIFY_TRUSTED "Sin notificación &para hosts de confianza"
#define TX_NOTIFY_GROUP_ACCESS "Acceso remoto"
#define TX_NOTIFY_ACCESS "&Mostrar accesos remotos"
#define TX_NOTIFY_ACCESS_IGNORE_LOCALHOST "Omi&tir localhost"
#define TX_NOTIFY_ACCESS_IGNORE_TRUSTED "Omitir los hosts &de confianza"
#define TX_NOTIFY_ACCESS_IGNORE_IPC "Omitir &el acceso a $IPC sin nombre de usuario"
#define TX_NOTIFY_ACCESS_BALLOON "Gl&obo"
#define TX_NOTIFY_ACCESS_WINDOW "Ventana &separada"
#define TX_NOTIFY_GROUP_SHARE "Recursos nuevos"
#define TX_NOTIFY_SHARE "Mostrar &recursos compartidos nuevos"
#define TX_NOTIFY_SHARE_BALLOON "G&lobo"
#define TX_NOTIFY_SHARE_WINDOW "Ve&ntana separada"
#define TX_NOTIFY_GROUP_MAC_SPOOFING "Suplantación MAC"
#define TX_NOTIFY_MAC_SPOOFING "Alerta &de suplantación de dirección MAC"
#define TX_NOTIFY_MAC_SPOOFING_BALLOON "Glo&bo"
#define TX_NOTIFY_MAC_SPOOFING_WINDOW "&Ventana separada"

// Page View
#define TX_VIEW_GROUP_COLUMNS "Columnas visibles"
#define TX_VIEW_MAC "&Dirección física (MAC)"
#define TX_VIEW_LAST_PACKET "Último &paquete recibido"
#define TX_VIEW_HOST_NAME "&Nombre de host"
#define TX_VIEW_VENDOR "&Fabricante de la tarjeta"
#define TX_VIEW_INFORMATION "&Información avanzada"
#define TX_VIEW_GROUP_ENTRIES "Entradas"
#define TX_VIEW_HIDE_SECURE "&Ocultar los hosts de confianza"
#define TX_VIEW_GREYED_OUT "&Mostrar en gris las entradas de hace más de"
#define TX_VIEW_MINUTES "minutos"
#define TX_VIEW_OFFLINE_RED "Mostrar en &rojo los hosts vigilados desconectados"
#define TX_VIEW_GROUP_WINDOW "Ventana"
#define TX_VIEW_SAVE_WINDOW "Guardar &tamaño y posición de la ventana"
#define TX_VIEW_SAVE_COLUMN_WIDTH "Guardar &el ancho de columnas para la sesión"

// Page Hosts
#define TX_HOSTS_TRUSTED "Hosts &de confianza"
#define TX_HOSTS_DISTRUSTED "Hosts &no fiables"
#define TX_HOSTS_WATCHED "&Hosts vigilados"
#define TX_HOSTS_ADVANCED "A&vanzado"

// Pages of host lists
#define TX_TRUSTED_LIST "Hosts de confianza"
#define TX_DISTRUSTED_LIST "Hosts no fiables"
#define TX_WATCHED_LIST "Hosts vigilados"
#define TX_LIST_ADD_HOST "Añadir &host"
#define TX_LIST_EDIT_HOST "&Editar host"
#define TX_LIST_DELETE_HOST "Eli&minar host"
#define TX_WATCHED_SETTINGS "&Configuración"

// Entry of a host
#define TX_HOST_ENTRY_TITLE "Vardelwatch - Host"
#define TX_HOST_ENTRY_IP "&Dirección IP:"
#define TX_HOST_ENTRY_NAME "&Nombre de host:"

// Watch settings
#define TX_WATCH_TITLE "Vardelwatch - Vigilancia"
#define TX_WATCH_METHOD "&Método:"
#define TX_WATCH_INTERVAL "&Intervalo:"
#define TX_WATCH_SECONDS "segundos"
#define TX_WATCH_NOTIFICATION "&Notificación"
#define TX_WATCH_CONFIRM "&Confirmar los cambios de estado"

// Page Advanced below Hosts
#define TX_NEW_TRUSTED_GROUP "Aplicación para hosts nuevos de confianza"
#define TX_NEW_TRUSTED_APPLICATION "Apli&cación:"
#define TX_NEW_TRUSTED_PARAMETERS "&Parámetros:"
#define TX_NEW_OTHER_GROUP "Aplicación para hosts nuevos no fiables o desconocidos"
#define TX_NEW_OTHER_APPLICATION "Aplicació&n:"
#define TX_NEW_OTHER_PARAMETERS "Pa&rámetros:"
#define TX_NEW_OTHER_DISTRUSTED "solo &hosts no fiables"
#define TX_NEW_OTHER_UNKNOWN "&solo hosts desconocidos"

// Page Applications
#define TX_APPLICATIONS_LIST "Aplicaciones"
#define TX_APPLICATIONS_NEW "&Nueva..."
#define TX_APPLICATIONS_CONFIGURE "&Configuración"
#define TX_APPLICATIONS_DELETE "&Eliminar"

// Entry of an application
#define TX_APPLICATION_ENTRY_TITLE "Vardelwatch - Aplicación"
#define TX_APPLICATION_ENTRY_NAME "&Nombre de la aplicación:"
#define TX_APPLICATION_ENTRY_EXECUTABLE "&Archivo ejecutable:"
#define TX_APPLICATION_ENTRY_PARAMETERS "&Parámetros de la aplicación:"
#define TX_TAGS_GROUP "Etiquetas posibles en los parámetros"
#define TX_TAG_IP "Dirección IP del host"
#define TX_TAG_HOST "Nombre del host"
#define TX_TAG_MAC "Dirección MAC del host"
#define TX_TAG_LOCAL_IP "Dirección IP local"
#define TX_TAG_LOCAL_HOST "Nombre de host local"
#define TX_TAG_LOCAL_SUBNET "Subred local"

// Page Plugins
#define TX_PLUGINS_LIST "Plugins"
#define TX_PLUGINS_RELOAD "&Recargar"
#define TX_PLUGINS_CONFIGURE "&Configuración"
#define TX_PLUGINS_ABOUT "Acerca &de"

// Page Reports
#define TX_REPORTS_GENERATE "Generar &un informe con una plantilla"
#define TX_REPORTS_TEMPLATE "&Plantilla:"
#define TX_REPORTS_PATH "&Carpeta de los archivos generados:"
#define TX_REPORTS_INTERVAL "&Intervalo"
#define TX_REPORTS_MINUTES "Minutos"
#define TX_REPORTS_OPTIONS "Opciones del informe"
#define TX_REPORTS_HOSTS "Host(s)"
#define TX_REPORTS_TRUSTED "Host(s) de confianza"
#define TX_REPORTS_DISTRUSTED "Host(s) no fiable(s)"
#define TX_REPORTS_UNKNOWN "Host(s) desconocido(s)"
#define TX_REPORTS_SHARES "Recursos compartidos"
#define TX_REPORTS_REMOTE_ACCESS "Acceso remoto"
#define TX_REPORTS_WATCHED "Host(s) vigilado(s)"

// Page Advanced: the administration accounts
#define TX_ACCOUNTS_GROUP "Cuentas de administrador"
#define TX_ACCOUNTS_LIST "&Cuentas:"
#define TX_ACCOUNTS_ADD "Aña&dir cuenta"
#define TX_ACCOUNTS_EDIT "&Editar cuenta"
#define TX_ACCOUNTS_DELETE "Eli&minar cuenta"
#define TX_ACCOUNTS_NAME "Nombre de &la cuenta:"
#define TX_ACCOUNTS_USER "Nombre de &usuario:"
#define TX_ACCOUNTS_PASSWORD "Co&ntraseña:"
#define TX_ACCOUNTS_SAVE "Gua&rdar"

// Page Eventlog
#define TX_EVENTLOG_USE "&Usar el registro de eventos"
#define TX_EVENTLOG_SAVE "Guardar &los eventos en un archivo"
#define TX_EVENTLOG_LIMIT_SIZE "&Tamaño máximo del archivo"
#define TX_EVENTLOG_KILOBYTES "KB"

// Page Syslog
#define TX_SYSLOG_USE "&Usar syslog"
#define TX_SYSLOG_ENTRIES "Entradas (0 = sin límite)"
#define TX_SYSLOG_NOTIFICATION "&Notificación"
#define TX_SYSLOG_LEVEL "&Si el nivel es menor o igual que:"
#define TX_SYSLOG_BY_FACILITY "&O si la categoría es:"
#define TX_SYSLOG_BY_WORDS "O si &el mensaje contiene una de estas palabras (separadas por comas):"
#define TX_SYSLOG_SHOW_WINDOW "&Mostrar una ventana y añadir al registro de eventos"
#define TX_SYSLOG_EVENTLOG_ONLY "Añadir solo al &registro de eventos"

// Page Im-/Export
#define TX_EXPORT_SETTINGS "&Exportar la configuración"
#define TX_IMPORT_SETTINGS "&Importar la configuración"

// Tray menu
#define TX_MENU_START "&Iniciar"
#define TX_MENU_STOP "De&tener"
#define TX_MENU_SILENT_MODE "&Modo silencioso"
#define TX_MENU_VIEW "&Vista"
#define TX_MENU_RESOURCES "&Recursos"
#define TX_MENU_EVENTLOG "Registro de &eventos"
#define TX_MENU_SYSLOG "SysL&og"
#define TX_MENU_SETTINGS "&Configuración"
#define TX_MENU_LANGUAGE "I&dioma"
#define TX_MENU_INFORMATIONS "I&nformación"
#define TX_MENU_CHECK_UPDATES "&Buscar una nueva versión..."
#define TX_MENU_ABOUT "&Acerca de..."
#define TX_MENU_HELP "Ayuda (&en línea)"
#define TX_MENU_EXIT "&Salir"

// View menu
#define TX_MENU_PLUGINS "&Plugins"
#define TX_MENU_APPLICATIONS "&Aplicaciones"
#define TX_MENU_FILTER "&Filtro"
#define TX_MENU_SHOW_TRUSTED "Mostrar hosts &de confianza"
#define TX_MENU_SHOW_DISTRUSTED "Mostrar &hosts no fiables"
#define TX_MENU_SHOW_UNKNOWN "&Mostrar hosts desconocidos"
#define TX_MENU_DEVICE_URL "&URL del dispositivo"
#define TX_MENU_SET_TRUSTED "Marcar &host(s) como de confianza"
#define TX_MENU_SET_DISTRUSTED "Marcar host(&s) como no fiable(s)"
#define TX_MENU_SET_UNKNOWN "&Marcar host(s) como desconocido(s)"
#define TX_MENU_DELETE_HOSTS "&Eliminar los hosts seleccionados"

// Resource menu
#define TX_MENU_EXPLORE "&Explorar..."
#define TX_MENU_SEARCH "&Buscar..."

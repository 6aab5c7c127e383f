// The French texts of the templates and the menu, as DialogTexts_en.h has the English ones. In UTF-8.
#pragma once

// Buttons of several dialogs
#define TX_OK "OK"
#define TX_CANCEL "Annuler"
#define TX_CLOSE "Fermer"
#define TX_BROWSE "..."

// Host view
#define TX_HOST_VIEW_TITLE "Vardelwatch - Affichage"
#define TX_HOST_VIEW_LIST "Hôtes connus"
#define TX_HOST_VIEW_COUNT "Hôte(s) connu(s) :"
#define TX_HOST_VIEW_AUTO_REFRESH "Actualisation automatique"
#define TX_HOST_VIEW_UPDATES "Modifications disponibles !"
#define TX_HOST_VIEW_REFRESH "Actualiser"

// Event log, syslog, network resources
#define TX_EVENT_LOG_TITLE "Vardelwatch - Journal d'événements"
#define TX_EVENT_LOG_LIST "Événements"
#define TX_SYSLOG_TITLE "Vardelwatch - SysLog"
#define TX_SYSLOG_LIST "Messages syslog"
#define TX_RESOURCES_TITLE "Vardelwatch - Ressources"
#define TX_RESOURCES_TREE "Hôtes et leurs partages"

// About box; %s takes the version
#define TX_ABOUT_TITLE "À propos de Vardelwatch"
#define TX_ABOUT_VERSION "Version %s"
#define TX_ABOUT_PURPOSE "Observe le réseau local et montre qui s'y trouve."
#define TX_ABOUT_CAPTURE_LIBRARY "Bibliothèque de capture :"

// Updates
#define TX_UPDATES_TITLE "Vardelwatch - Mises à jour"
#define TX_UPDATES_INSTALLED "Installée"
#define TX_UPDATES_OFFERED "Disponible"
#define TX_UPDATES_PROGRAM_NAME "Vardelwatch :"
#define TX_UPDATES_LIST_NAME "Liste des adresses MAC :"
#define TX_UPDATES_LIST "mettre à &jour la liste des adresses MAC"
#define TX_UPDATES_PROGRAM "mettre à jour Vardelwatch"
#define TX_UPDATES_FILES "Fichier(s) :"
#define TX_UPDATES_KILOBYTES "Ko chargés :"
#define TX_UPDATES_WEBSITE "&Ouvrir le site web"
#define TX_UPDATES_START "&Mettre à jour"

// Settings dialog
#define TX_SETTINGS_TITLE "Vardelwatch - Paramètres"
#define TX_SETTINGS_TREE "Pages"
#define TX_SETTINGS_SAVE "&Enregistrer"
#define TX_SETTINGS_SAVE_AND_EXIT "Enregistrer et &quitter"
#define TX_SETTINGS_HELP "&Aide"

// Page General
#define TX_GENERAL_GROUP_START "Démarrage"
#define TX_GENERAL_AUTO_START "&Démarrer avec Windows®"
#define TX_GENERAL_AUTO_CAPTURE "Démarrer &la détection IP immédiatement "
#define TX_GENERAL_GROUP_DETECTION "Détection"
#define TX_GENERAL_DELETE_ARP_CACHE "&Vider régulièrement le cache ARP"
#define TX_GENERAL_USE_WMI "&Utiliser WMI pour en savoir plus sur les hôtes distants"
#define TX_GENERAL_SHARE_SEARCH "&Chercher tous les partages des hôtes distants visibles"
#define TX_GENERAL_GROUP_UPDATES "Mises à jour"
#define TX_GENERAL_UPDATE_CHECK "&Rechercher régulièrement des mises à jour"

// Page Interface
#define TX_INTERFACE_ADAPTERS "&Interface réseau :"
#define TX_INTERFACE_GROUP_DETAILS "Interface choisie"
#define TX_INTERFACE_DESCRIPTION "Description :"
#define TX_INTERFACE_IP "Adresse IP :"
#define TX_INTERFACE_NET_MASK "Masque réseau :"
#define TX_INTERFACE_HOST_NAME "Nom d'hôte :"
#define TX_INTERFACE_MAC "Adresse MAC :"
#define TX_INTERFACE_GROUP_SYSTEM "Cet ordinateur"
#define TX_INTERFACE_OS_VERSION "Version du système :"

// Pages Notification - part 1 and 2
#define TX_NOTIFY_GROUP_NEW_HOST "Nouveaux hôtes"
#define TX_NOTIFY_NEW_HOST "Signaler les nou&veaux hôtes"
#define TX_NOTIFY_NEW_HOST_BALLOON "&Info-bulle"
#define TX_NOTIFY_NEW_HOST_WINDOW "&Fenêtre séparée"
#define TX_NOTIFY_TRUSTED "&Pas de notification pour les hôtes de confiance"
#define TX_NOTIFY_GROUP_ACCESS "Accès distant"
#define TX_NOTIFY_ACCESS "Signaler &les accès distants"
#define TX_NOTIFY_ACCESS_IGNORE_LOCALHOST "Igno&rer localhost"
#define TX_NOTIFY_ACCESS_IGNORE_TRUSTED "Ignorer les &hôtes de confiance"
#define TX_NOTIFY_ACCESS_IGNORE_IPC "Ignorer l'accès à $IPC sans nom &d'utilisateur"
#define TX_NOTIFY_ACCESS_BALLOON "Info-&bulle"
#define TX_NOTIFY_ACCESS_WINDOW "Fenêtre &séparée"
#define TX_NOTIFY_GROUP_SHARE "Nouveaux partages"
#define TX_NOTIFY_SHARE "Signaler les nouveau&x partages"
#define TX_NOTIFY_SHARE_BALLOON "Inf&o-bulle"
#define TX_NOTIFY_SHARE_WINDOW "Fe&nêtre séparée"
#define TX_NOTIFY_GROUP_MAC_SPOOFING "Usurpation MAC"
#define TX_NOTIFY_MAC_SPOOFING "Alerte &d'usurpation d'adresse MAC"
#define TX_NOTIFY_MAC_SPOOFING_BALLOON "&Info-bulle"
#define TX_NOTIFY_MAC_SPOOFING_WINDOW "&Fenêtre séparée"

// Page View
#define TX_VIEW_GROUP_COLUMNS "Colonnes visibles"
#define TX_VIEW_MAC "Adresse &matérielle (MAC)"
#define TX_VIEW_LAST_PACKET "&Dernier paquet reçu"
#define TX_VIEW_HOST_NAME "&Nom d'hôte"
#define TX_VIEW_VENDOR "&Fabricant de la carte"
#define TX_VIEW_INFORMATION "&Informations avancées"
#define TX_VIEW_GROUP_ENTRIES "Entrées"
#define TX_VIEW_HIDE_SECURE "Masquer les &hôtes de confiance"
#define TX_VIEW_GREYED_OUT "&Griser les entrées datant de plus de"
#define TX_VIEW_MINUTES "minutes"
#define TX_VIEW_OFFLINE_RED "Afficher en &rouge les hôtes surveillés hors ligne"
#define TX_VIEW_GROUP_WINDOW "Fenêtre"
#define TX_VIEW_SAVE_WINDOW "Mémoriser &la taille et la position de la fenêtre"
#define TX_VIEW_SAVE_COLUMN_WIDTH "Mémoriser la largeur des &colonnes pour la session"

// Page Hosts
#define TX_HOSTS_TRUSTED "Hôtes &de confiance"
#define TX_HOSTS_DISTRUSTED "&Hôtes suspects"
#define TX_HOSTS_WATCHED "Hôtes &surveillés"
#define TX_HOSTS_ADVANCED "A&vancé"

// Pages of host lists
#define TX_TRUSTED_LIST "Hôtes de confiance"
#define TX_DISTRUSTED_LIST "Hôtes suspects"
#define TX_WATCHED_LIST "Hôtes surveillés"
#define TX_LIST_ADD_HOST "Ajouter &un hôte"
#define TX_LIST_EDIT_HOST "&Modifier l'hôte"
#define TX_LIST_DELETE_HOST "&Supprimer l'hôte"
#define TX_WATCHED_SETTINGS "&Paramètres"

// Entry of a host
#define TX_HOST_ENTRY_TITLE "Vardelwatch - Hôte"
#define TX_HOST_ENTRY_IP "&Adresse IP :"
#define TX_HOST_ENTRY_NAME "&Nom d'hôte :"

// Watch settings
#define TX_WATCH_TITLE "Vardelwatch - Surveillance"
#define TX_WATCH_METHOD "&Méthode :"
#define TX_WATCH_INTERVAL "&Intervalle :"
#define TX_WATCH_SECONDS "secondes"
#define TX_WATCH_NOTIFICATION "&Notification"
#define TX_WATCH_CONFIRM "&Confirmer les changements d'état"

// Page Advanced below Hosts
#define TX_NEW_TRUSTED_GROUP "Application à lancer pour les nouveaux hôtes de confiance"
#define TX_NEW_TRUSTED_APPLICATION "Appli&cation :"
#define TX_NEW_TRUSTED_PARAMETERS "&Paramètres :"
#define TX_NEW_OTHER_GROUP "Application à lancer pour les hôtes suspects ou inconnus"
#define TX_NEW_OTHER_APPLICATION "Applica&tion :"
#define TX_NEW_OTHER_PARAMETERS "Pa&ramètres :"
#define TX_NEW_OTHER_DISTRUSTED "&seulement les hôtes suspects"
#define TX_NEW_OTHER_UNKNOWN "seulement &les hôtes inconnus"

// Page Applications
#define TX_APPLICATIONS_LIST "Applications"
#define TX_APPLICATIONS_NEW "&Nouveau..."
#define TX_APPLICATIONS_CONFIGURE "&Configuration"
#define TX_APPLICATIONS_DELETE "&Supprimer"

// Entry of an application
#define TX_APPLICATION_ENTRY_TITLE "Vardelwatch - Application"
#define TX_APPLICATION_ENTRY_NAME "&Nom de l'application :"
#define TX_APPLICATION_ENTRY_EXECUTABLE "&Fichier exécutable :"
#define TX_APPLICATION_ENTRY_PARAMETERS "&Paramètres de l'application :"
#define TX_TAGS_GROUP "Balises possibles dans les paramètres"
#define TX_TAG_IP "Adresse IP de l'hôte"
#define TX_TAG_HOST "Nom de l'hôte"
#define TX_TAG_MAC "Adresse MAC de l'hôte"
#define TX_TAG_LOCAL_IP "Adresse IP locale"
#define TX_TAG_LOCAL_HOST "Nom d'hôte local"
#define TX_TAG_LOCAL_SUBNET "Sous-réseau local"

// Page Plugins
#define TX_PLUGINS_LIST "Plugins"
#define TX_PLUGINS_RELOAD "&Recharger"
#define TX_PLUGINS_CONFIGURE "&Configuration"
#define TX_PLUGINS_ABOUT "À &propos"

// Page Reports
#define TX_REPORTS_GENERATE "&Générer un rapport à partir d'un modèle"
#define TX_REPORTS_TEMPLATE "&Modèle :"
#define TX_REPORTS_PATH "&Dossier des fichiers générés :"
#define TX_REPORTS_INTERVAL "&Intervalle"
#define TX_REPORTS_MINUTES "Minutes"
#define TX_REPORTS_OPTIONS "Options du rapport"
#define TX_REPORTS_HOSTS "Hôte(s)"
#define TX_REPORTS_TRUSTED "Hôte(s) de confiance"
#define TX_REPORTS_DISTRUSTED "Hôte(s) suspect(s)"
#define TX_REPORTS_UNKNOWN "Hôte(s) inconnu(s)"
#define TX_REPORTS_SHARES "Partages"
#define TX_REPORTS_REMOTE_ACCESS "Accès distant"
#define TX_REPORTS_WATCHED "Hôte(s) surveillé(s)"

// Page Advanced: the administration accounts
#define TX_ACCOUNTS_GROUP "Comptes administrateur"
#define TX_ACCOUNTS_LIST "&Comptes :"
#define TX_ACCOUNTS_ADD "Ajouter &un compte"
#define TX_ACCOUNTS_EDIT "Modifier &le compte"
#define TX_ACCOUNTS_DELETE "&Supprimer le compte"
#define TX_ACCOUNTS_NAME "&Nom du compte :"
#define TX_ACCOUNTS_USER "Nom &d'utilisateur :"
#define TX_ACCOUNTS_PASSWORD "&Mot de passe :"
#define TX_ACCOUNTS_SAVE "En&registrer"

// Page Eventlog
#define TX_EVENTLOG_USE "&Utiliser le journal d'événements"
#define TX_EVENTLOG_SAVE "Enregistrer &les événements dans un fichier"
#define TX_EVENTLOG_LIMIT_SIZE "&Taille maximale du fichier"
#define TX_EVENTLOG_KILOBYTES "Ko"

// Page Syslog
#define TX_SYSLOG_USE "&Utiliser syslog"
#define TX_SYSLOG_ENTRIES "Entrées (0 = illimité)"
#define TX_SYSLOG_NOTIFICATION "&Notification"
#define TX_SYSLOG_LEVEL "Si &le niveau est inférieur ou égal à :"
#define TX_SYSLOG_BY_FACILITY "&Ou si la catégorie est :"
#define TX_SYSLOG_BY_WORDS "Ou si le &message contient un des mots suivants (séparés par des virgules) :"
#define TX_SYSLOG_SHOW_WINDOW "Afficher une &fenêtre et ajouter au journal"
#define TX_SYSLOG_EVENTLOG_ONLY "Ajouter &seulement au journal"

// Page Im-/Export
#define TX_EXPORT_SETTINGS "Exporter &les paramètres"
#define TX_IMPORT_SETTINGS "&Importer les paramètres"

// Tray menu
#define TX_MENU_START "&Démarrer"
#define TX_MENU_STOP "&Arrêter"
#define TX_MENU_SILENT_MODE "&Mode silencieux"
#define TX_MENU_VIEW "A&ffichage"
#define TX_MENU_RESOURCES "&Ressources"
#define TX_MENU_EVENTLOG "&Journal d'événements"
#define TX_MENU_SYSLOG "&SysLog"
#define TX_MENU_SETTINGS "&Paramètres"
#define TX_MENU_LANGUAGE "&Langue"
#define TX_MENU_INFORMATIONS "&Informations"
#define TX_MENU_CHECK_UPDATES "&Rechercher une nouvelle version..."
#define TX_MENU_ABOUT "À &propos..."
#define TX_MENU_HELP "&Aide (en ligne)"
#define TX_MENU_EXIT "&Quitter"

// View menu
#define TX_MENU_PLUGINS "&Plugins"
#define TX_MENU_APPLICATIONS "&Applications"
#define TX_MENU_FILTER "&Filtre"
#define TX_MENU_SHOW_TRUSTED "Afficher &les hôtes de confiance"
#define TX_MENU_SHOW_DISTRUSTED "&Afficher les hôtes suspects"
#define TX_MENU_SHOW_UNKNOWN "Afficher les &hôtes inconnus"
#define TX_MENU_DEVICE_URL "&URL de l'appareil"
#define TX_MENU_SET_TRUSTED "&Définir comme hôte(s) de confiance"
#define TX_MENU_SET_DISTRUSTED "Définir &comme hôte(s) suspect(s)"
#define TX_MENU_SET_UNKNOWN "Définir comme &hôte(s) inconnu(s)"
#define TX_MENU_DELETE_HOSTS "&Supprimer les hôtes sélectionnés"

// Resource menu
#define TX_MENU_EXPLORE "&Explorer..."
#define TX_MENU_SEARCH "&Rechercher..."

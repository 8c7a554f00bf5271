#pragma once
// Resource ids of the component's module: dialog templates, their controls and the icons. The one
// place they are written: the resource script, the dialogs' control headers, the headless
// templates and the command line all take them from here.

// Dialog templates.
#define IDD_PREFERENCES 101
#define IDD_TAGGER 103
#define IDD_SERVER_EDITOR 104
#define IDD_MUSICBRAINZ 116

// Icons of the two tagging sources.
#define IDI_DISCORA 110
#define IDI_MUSICBRAINZ 115

// The manifest that asks for version 6 of the common controls (list-view groups, themes).
#define IDR_COMPONENT_MANIFEST 2

// Dialog 103, "discora tagger".
#define IDC_TAGGER_ARTIST 1006
#define IDC_TAGGER_ALBUM 1007
#define IDC_TAGGER_YEAR 1008
#define IDC_TAGGER_GENRE 1009
#define IDC_TAGGER_MATCHES_GROUP 1010
#define IDC_TAGGER_MATCHES 1011
#define IDC_TAGGER_ARTIST_LABEL 1012
#define IDC_TAGGER_ALBUM_LABEL 1013
#define IDC_TAGGER_YEAR_LABEL 1014
#define IDC_TAGGER_GENRE_LABEL 1015
#define IDC_TAGGER_DISC_GROUP 1016
#define IDC_TAGGER_WIPE 1017
#define IDC_TAGGER_VARIOUS 1021
#define IDC_TAGGER_UPDATE 1022
#define IDC_TAGGER_TRACK_GROUP 1023
#define IDC_TAGGER_TRACKS 1024
#define IDC_TAGGER_SETTINGS 3
#define IDC_TAGGER_CLOSE 2  // IDCANCEL: Escape and the close box press it too

// Labels nobody addresses.
#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// Dialog 116, "MusicBrainz Lookup".
#define IDC_MB_SAVE 1    // IDOK: Enter presses it
#define IDC_MB_CANCEL 2  // IDCANCEL: Escape and the close box press it too
#define IDC_MB_ALBUM_CAPTION 1290
#define IDC_MB_ALBUM 1032
#define IDC_MB_TRACKS_CAPTION 1291
#define IDC_MB_TRACKS 1024

// Dialog 101, the preferences page.
#define IDC_PREFS_USER_CAPTION 1033
#define IDC_PREFS_EMAIL 1001
#define IDC_PREFS_SERVER_CAPTION 1034
#define IDC_PREFS_SERVERS 1002
#define IDC_PREFS_ADD 1025
#define IDC_PREFS_EDIT 1026
#define IDC_PREFS_REMOVE 1028
#define IDC_PREFS_RETRIEVE 1030

// Dialog 104, the server editor.
#define IDC_EDITOR_OK 1      // IDOK
#define IDC_EDITOR_CANCEL 2  // IDCANCEL
#define IDC_EDITOR_PROTOCOL 1029
#define IDC_EDITOR_SERVER 1026
#define IDC_EDITOR_PORT 1027
#define IDC_EDITOR_ADDRESS 1028
#define IDC_EDITOR_DESCRIPTION 1030

#pragma once
// Resource ids of the component's module: dialog templates, their controls and the icons. Shared
// by the resource script and the Win32 views.

// Dialog templates.
#define IDD_TAGGER 103

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

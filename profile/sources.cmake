set(PELINOR_PROFILE_SOURCES
  profile/field_type.cpp
  profile/profile.cpp
  profile/profile_ini.cpp
  profile/profile_record.cpp
  profile/tp_detect_type.cpp
  profile/scan_profile.cpp
)

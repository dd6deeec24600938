pelinor_add_tests(profile
  tests/profile/field_type_test.cpp
  tests/profile/profile_test.cpp
  tests/profile/tp_detect_type_test.cpp
  tests/profile/scan_profile_test.cpp
)

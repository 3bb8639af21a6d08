# Shell-level checks of the kestrelink tool, run by CTest with the built binary.
if(KESTRELINK_BUILD_TESTS)
  enable_testing()
  add_test(NAME cli COMMAND bash ${PROJECT_SOURCE_DIR}/tests/tools/cli_test.sh $<TARGET_FILE:kestrelink_tool>)
  # Keeps the user's own settings files out of the run, as the unit tests do.
  set_tests_properties(cli PROPERTIES ENVIRONMENT
    "KESTRELINK_HKCU=${CMAKE_CURRENT_BINARY_DIR}/no-such-user.reg;KESTRELINK_HKLM=${CMAKE_CURRENT_BINARY_DIR}/no-such-machine.reg")
endif()

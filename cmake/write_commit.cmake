# Writes SOURCE_FILE with the commit that the tree SOURCE stands on, "unknown" outside a checkout; unchanged, it is left alone.
execute_process(COMMAND git -C ${SOURCE} rev-parse --short=12 HEAD OUTPUT_VARIABLE commit ERROR_QUIET
  OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE failed)
if(failed)
  set(commit unknown)
endif()
file(CONFIGURE OUTPUT ${SOURCE_FILE} CONTENT
  "#include \"cli/version.h\"\n\nconst char* const tovik::cli::kCommit = \"@commit@\";\n" @ONLY)

# Writes OUTPUT, the source file that holds the version and the build stamp. SOURCE_DATE_EPOCH,
# when set, is the time of the build, so that two builds of one commit are the same bytes.
string(TIMESTAMP moment "%Y-%m-%d %H:%M:%S" UTC)
execute_process(COMMAND git -C ${SOURCE_DIR} rev-parse --short=7 HEAD
                OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET
                RESULT_VARIABLE failed)
if(failed)
  set(commit "")
else()
  string(PREPEND commit " ")
endif()
file(WRITE ${OUTPUT} "#include \"app/version.h\"

const char* const Quillet::versionText    = \"${VERSION}\";
const char* const Quillet::buildStampText = \"${moment}${commit}\";
")

# Writes OUTPUT, the source file that holds the version and the build stamp. SOURCE_DATE_EPOCH,
# when set, is the time of the build, so that two builds of one commit are the same bytes.
string(TIMESTAMP moment "%Y-%m-%d %H:%M:%S" UTC)

# A source tarball names its commit; elsewhere git knows it.
set(commit "")
file(READ ${SOURCE_DIR}/cmake/commit.txt archived)
if(archived MATCHES "^[0-9a-f]+")
  string(SUBSTRING ${archived} 0 7 commit)
elseif(EXISTS ${SOURCE_DIR}/.git)
  execute_process(COMMAND git -C ${SOURCE_DIR} rev-parse --short=7 HEAD
                  OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(commit)
  string(PREPEND commit " ")
endif()

file(WRITE ${OUTPUT} "#include \"app/version.h\"

const char* const Quillet::versionText    = \"${VERSION}\";
const char* const Quillet::buildStampText = \"${moment}${commit}\";
")

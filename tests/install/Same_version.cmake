# SPDX-License-Identifier: MIT
# Everything that names the version must name the one of CMakeLists.txt.
function(must_match file pattern)
    file(READ ${SOURCE}/${file} text)
    if(NOT text MATCHES "${pattern}")
        message(SEND_ERROR "${file} does not name version ${VERSION}: no match for ${pattern}")
    endif()
endfunction()

string(REPLACE "." "[.]" version "${VERSION}")
must_match(CITATION.cff "\nversion: ${version}\n")
must_match(CHANGELOG.md "\n## [[]${version}[]] - ")
must_match(packaging/debian/changelog "^plexor [(]${version}-[0-9]+[)] ")
must_match(docs/man/plexor.1 "\n[.]TH PLEXOR 1 [0-9-]+ \"Plexor ${version}\"")

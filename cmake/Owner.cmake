# What the owner of the product has to choose. Everything else that shows one of these is made from here: About box,
# packages, metadata, manual pages.
set(ZAVELIK_LICENSE "" CACHE STRING "SPDX name of the licence; its text stands in LICENSE. Empty: none has been chosen")
set(ZAVELIK_OWNER "Zavelik developers" CACHE STRING "Who publishes the program")
set(ZAVELIK_AUTHOR_MAIL "author@example.org" CACHE STRING "Mail address of the author")
set(ZAVELIK_HOMEPAGE "https://example.org/zavelik" CACHE STRING "Home page; pictures are looked for below it")
set(ZAVELIK_COMPONENT_ID "org.example.zavelik" CACHE STRING "Name of the program in software catalogues")
set(ZAVELIK_LEGAL_LINE "Программа распространяется без каких-либо гарантий." CACHE STRING "Legal line of the About box")

if(ZAVELIK_LICENSE)
  set(ZAVELIK_LICENSE_NAME "${ZAVELIK_LICENSE}")
  set(ZAVELIK_PROJECT_LICENSE "${ZAVELIK_LICENSE}")
  set(ZAVELIK_LICENSE_NOTE "The text of the licence stands in the file LICENSE.")
else()
  set(ZAVELIK_LICENSE_NAME "none-chosen")
  set(ZAVELIK_PROJECT_LICENSE "LicenseRef-proprietary")
  set(ZAVELIK_LICENSE_NOTE "No licence has been chosen yet; until then all rights are reserved.")
endif()

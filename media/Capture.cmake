# The screen capture's Qt side: the capture steps (session layer, QtGui only) and the capture
# window. Included from the client's part of the top-level list, where tavren_session and
# tavren_ui exist; the encoder itself stays in the plain tavren_media library.
target_sources(tavren_session PRIVATE ${CMAKE_CURRENT_LIST_DIR}/ScreenCapture.cpp)
target_link_libraries(tavren_session PUBLIC tavren_media)
target_sources(tavren_ui PRIVATE ${CMAKE_CURRENT_LIST_DIR}/ui/ChatCaptureRectangle.cpp)

# The server connection, the dispatcher, login and the account dialogs.

# Endpoints of the deployment, fixed at build time. "{default server #1}" is the local server
# that scripts/run.sh starts; a deployment names its own hosts here.
set(TAVREN_DEFAULT_SERVER_1 "127.0.0.1" CACHE STRING "Host behind {default server #1}")
set(TAVREN_DEFAULT_SERVER_2 "127.0.0.1" CACHE STRING "Host behind {default server #2}")
set(TAVREN_DEFAULT_SERVER_3 "127.0.0.1" CACHE STRING "Host behind {default server #3}")
set(TAVREN_DEFAULT_SERVER_4 "127.0.0.1" CACHE STRING "Host behind {default server #4}")
set(TAVREN_TUNNEL_ADDRESS "127.0.0.1" CACHE STRING
    "IPv4 address of the server that the HTTP proxy tunnel asks for")
set(TAVREN_TUNNEL_PORT "5678" CACHE STRING "Server port that the HTTP proxy tunnel asks for")
configure_file(${CMAKE_CURRENT_SOURCE_DIR}/DefaultServers.h.in
               ${CMAKE_BINARY_DIR}/generated/core/DefaultServers.h @ONLY)

target_sources(tavren_session PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/AccountRequests.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ConnectTarget.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ConnectionFailure.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ConnectionOptions.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ErrorLog.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/FloodMeter.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/FloodMeters.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/LoginButton.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/LoginFlow.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/PingWatchdog.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/SavedAccounts.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ServerConnection.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ServerConsole.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ServerDispatcher.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ServerLink.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ServerTrust.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ServerSession.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/WireText.cpp
)

target_sources(tavren_ui PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/AccountEntryDialog.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/ChangeEmailDialog.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/ChangePasswordDialog.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/ChatConsole.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/ChatError.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/ChatLogin.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/ConnectionWindows.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/FormDialog.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/ui/SignUpDialog.cpp
)

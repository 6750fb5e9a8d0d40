# Sourced by ./demo and tools/readme-pictures: a throw-away home with the demo gateway running and its business signed in.

bin=$PWD/build/release/bin
home=
gateway=

# startDemoWorld: from here on HOME, the store and the trusted certificate are those of the throw-away home.
startDemoWorld() {
  home=$(mktemp -d)
  export HOME=$home XDG_DATA_HOME=$home/data XDG_STATE_HOME=$home/state SSL_CERT_FILE=$home/gateway/certificate.pem
  : >"$home/gateway.log"
  "$bin/quillpad-demo-gateway" --state "$home/gateway" >"$home/gateway.log" 2>&1 &
  gateway=$!
  while ! grep -q 'https://' "$home/gateway.log"; do
    kill -0 "$gateway" 2>/dev/null || {
      cat "$home/gateway.log" >&2
      echo "The extension looks for the demo gateway at https://localhost:8443; stop whatever else listens there." >&2
      return 1
    }
    sleep 0.05
  done
  "$bin/quillpad-home" settings sign-in --business-id demo --token-file "$home/gateway/token"
  "$bin/quillpad-home" settings currency '$ - USD'
}

# endDemoWorld [PROCESS...]: ends these processes, then the gateway, and removes the home.
endDemoWorld() {
  local process
  for process in "$@" $gateway; do
    kill "$process" 2>/dev/null && wait "$process" 2>/dev/null || true
  done
  [ -z "$home" ] || rm -rf "$home"
}

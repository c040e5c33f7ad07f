# Sourced after wine.sh, with Wine running: serial lines for the tests, COM41 to COM80 each connected with the port 100 above it.
serial_line_count=40
serial_folder=$WINEPREFIX/serial
coproc SERIAL_LINES { exec python3 "$(dirname "${BASH_SOURCE[0]}")/serial_lines.py" "$serial_folder" $serial_line_count; }
KIV_TEST_SERIAL_LINES=
if read -r -t 20 -u "${SERIAL_LINES[0]}" _; then
  for ((line = 0; line < serial_line_count; ++line)); do
    ln -sfn "$serial_folder/near$line" "$WINEPREFIX/dosdevices/com$((41 + line))"
    ln -sfn "$serial_folder/far$line" "$WINEPREFIX/dosdevices/com$((141 + line))"
    KIV_TEST_SERIAL_LINES+="COM$((41 + line))=COM$((141 + line));"
  done
fi
export KIV_TEST_SERIAL_LINES

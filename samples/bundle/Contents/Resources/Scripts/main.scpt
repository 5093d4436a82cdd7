-- A script in its text form, which osascript runs as it runs a compiled one.
display dialog "Good morning." buttons {"OK"} default button 1

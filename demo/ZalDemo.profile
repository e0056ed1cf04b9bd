ZalProfile 1
hide view.toggle_grid
after-command view.toggle_grid macro.toggle_recording

"""What people do with the program, from its start to its end. Each scenario gets a person at a desk
of his own."""

import os
import re
import subprocess

import accessible
import desk
import pages
import screen
from waiting import Failure, until
from words import Words, like


def must(holds, what):
    if not holds:
        raise Failure(what)


def _details(person, name, codec, timing, duration="00:00:20", tracks="2"):
    return pages.finished(person.words, name, like(r"\d\.\d\d MB"), tracks, codec, timing, duration)


def _details_of_mp4(person, name):
    return _details(person, name, "AVC1", "25.00 fps")


def _details_of_avi(person, name):
    """15 pictures each second, of 66666 microseconds; 86 of the 90 are left: 86 * 66 / 1000."""
    return _details(person, name, "FMP4", "66", "00:00:05")


def _pictures(file):
    """How many pictures a film holds that can be decoded, without a complaint."""
    says = subprocess.run(
        ["ffprobe", "-v", "error", "-count_frames", "-select_streams", "v", "-show_entries",
         "stream=nb_read_frames", "-of", "csv=p=0", file],
        stdin=subprocess.DEVNULL, capture_output=True, check=True)
    must(not says.stderr, "the saved film is damaged: " + says.stderr.decode())
    return int(says.stdout)


# Steps that come again and again.

def _adds(person, file):
    person.presses("IDS_ADD_FILE")
    person.picks(file)


def _chooses_mov(person, file):
    _adds(person, file)
    person.sees(pages.chosen(person.words, pages.corrupted(file)), "chosen")


def _chooses_avi(person, file):
    _adds(person, file)
    person.sees(pages.chosen(person.words, pages.path_of_avi(file)), "chosen")


def _is_asked_for_a_reference(person, file):
    _chooses_mov(person, file)
    person.presses("IDS_REPAIR")
    person.sees(pages.need_reference(person.words, file), "need reference")


def _gives_reference(person, file, reference):
    person.presses("IDS_CHOOSE_REFERENCE_MOV_FILE")
    person.picks(reference)
    person.sees(pages.reference_chosen(person.words, file, reference), "reference chosen")


def _repairs_with_reference(person):
    media = person.media
    _is_asked_for_a_reference(person, media.cut)
    _gives_reference(person, media.cut, media.healthy)
    person.presses("IDS_REPAIR")
    person.sees(_details_of_mp4(person, "holiday.mp4"), "finished")


def _repairs_avi(person):
    _chooses_avi(person, person.media.avi)
    person.presses("IDS_REPAIR")
    person.sees(_details_of_avi(person, "garden.avi"), "finished")


def _saves(person, file=None):
    """Saves under the name that is offered, or another; gives the file."""
    person.presses("IDS_SAVE")
    name = person.offered_name()
    person.saves_as(file)
    person.is_told(pages.note(person.words, "IDS_SAVE_COMPLETED"), "saved")
    person.answers("IDS_OK")
    person.sees(pages.home(person.words), "home after the save")
    saved = file or os.path.join(person.home.videos, name)
    must(os.path.isfile(saved), "no file " + saved)
    must(person.home.opened()[-1:] == ["file://" + os.path.dirname(saved) + "/"],
         "the folder was not opened: %s" % person.home.opened())
    must(person.home.results() == [], "left in the work folder: %s" % person.home.results())
    return saved


# The whole way of a new user.

def _repairs_and_saves_a_film(person):
    """An MP4 that needs a reference, from the start to the saved film, with a look at it."""
    person.starts()
    person.sees(pages.home(person.words), "home")
    _repairs_with_reference(person)
    person.presses("IDS_PREVIEW", section=2)
    player = desk.Player(person.bus, person.home)
    player.plays()
    if person.hand == "mouse":
        player.click("Pause")
    else:
        screen.key("space")
    until(lambda: player.find("push button", "Play"), "the pause of the player")
    person.looks("player")
    _comes_back_to_the_window(person, player)
    saved = _saves(person)
    _ends(player)
    must(re.fullmatch(r"KelvoClipfix_ \d+-\d+-\d{4}-\d+-\d+-\d+\.mov", os.path.basename(saved)),
         "the name is " + saved)
    must(_pictures(saved) in (499, 500), "the film has %d pictures" % _pictures(saved))
    person.quits()


def _ends(player):
    until(lambda: not player.runs, "the end of the player")


def _comes_back_to_the_window(person, player):
    """The player lies above the window: it is closed as any window, or left for the other."""
    if person.hand == "keyboard":
        screen.key("q")
        _ends(player)
    else:
        window = screen.windows(title="Kelvo Clipfix")[0]
        left, top, _, _ = screen.place(window)
        screen.click(left + 60, top + 20)
    until(lambda: screen.place(screen.active_window())[2] == 1025, "the window in front")


def by_mouse_alone(person):
    person.hand = "mouse"
    _repairs_and_saves_a_film(person)


def by_keyboard_alone(person):
    person.hand = "keyboard"
    _repairs_and_saves_a_film(person)


# Several jobs, several ways out.

def two_jobs_in_a_row(person):
    """An AVI that is looked at and left, then a film that is its own reference."""
    person.starts()
    _repairs_avi(person)
    must("Repaired.avi" in person.home.results(), "results: %s" % person.home.results())
    person.presses("IDS_SAVE")
    person.leaves_file_dialog()
    person.sees(_details_of_avi(person, "garden.avi"), "save left")
    person.presses("IDS_PREVIEW", section=1)
    first = desk.Player(person.bus, person.home)
    first.plays()
    # A player that is still open is closed before the next one starts.
    _comes_back_to_the_window(person, first)
    person.presses("IDS_PREVIEW", section=2)
    _ends(first)
    second = desk.Player(person.bus, person.home)
    second.plays()
    _comes_back_to_the_window(person, second)
    person.presses_title_bar("IDS_HOME")
    person.sees(pages.home(person.words), "home from details")
    _ends(second)
    must(person.home.results() == [], "the result was kept")
    _chooses_mov(person, person.media.own_reference)
    person.presses("IDS_REPAIR")
    person.sees(_details_of_mp4(person, "picnic.MP4"), "finished, own reference")
    person.hand = "keyboard"
    saved = _saves(person, os.path.join(person.home.videos, "my film.mov"))
    must(_pictures(saved) in (499, 500), "the film has %d pictures" % _pictures(saved))
    person.quits()


def a_reference_that_fails(person):
    media, words = person.media, person.words
    person.starts()
    _is_asked_for_a_reference(person, media.cut)
    person.presses("IDS_WHY_HEALTHY")
    until(lambda: person.home.opened(), "the help")
    must(person.home.opened() == ["file://%s/help/%s" % (
        person.home.programs.replace(" ", "%20"), words["IDS_WHY_HEALTHY_URL"])],
         "opened: %s" % person.home.opened())
    _gives_reference(person, media.cut, media.noise)
    # A dialog that is left takes the choice away.
    person.presses("IDS_CHOOSE_REFERENCE_MOV_FILE")
    person.leaves_file_dialog()
    person.sees(pages.need_reference(words, media.cut), "reference taken away")
    _gives_reference(person, media.cut, media.noise)
    person.presses("IDS_REPAIR")
    person.is_told(pages.note_with_link(words, "IDS_UNHEALTHY_1"), "unhealthy")
    person.answers("IDS_CANCEL")
    person.sees(pages.home(words), "home after the failure")
    person.quits()


def pause_home_and_close_in_a_running_job(person):
    words = person.words
    file = person.media.long_cut
    person.starts()
    _is_asked_for_a_reference(person, file)
    _gives_reference(person, file, person.media.healthy)
    person.presses("IDS_REPAIR")
    person.presses("IDS_PAUSE")
    running = pages.repairing_with_reference(words, file, person.media.healthy)
    paused = pages.repairing_with_reference(words, file, person.media.healthy, "IDS_RESUME")
    person.sees(paused, "paused")
    for control, refused in (("IDS_HOME", "home refused"), ("IDS_CLOSE", "close refused")):
        person.presses_title_bar(control)
        person.is_told(pages.note(words, "IDS_REPAIR_PROCESSING"), refused)
        person.answers("IDS_OK")
        # A job that was paused before stays so.
        person.sees(paused, "still paused")
    person.presses("IDS_RESUME")
    person.sees(running, "resumed")
    person.presses("IDS_PAUSE")
    person.presses("IDS_CANCEL")
    person.is_told(pages.question(words, "IDS_CANCEL_DLG_MSG"), "cancel")
    person.answers("IDS_NO")
    # A No resumes the job, also one that had been paused.
    person.sees(running, "goes on after No")
    person.presses("IDS_CANCEL")
    person.is_told(pages.question(words, "IDS_CANCEL_DLG_MSG"), "cancel again")
    person.answers("IDS_YES", closes=False)
    person.is_told(pages.note(words, "IDS_REPAIR_ABORTED"), "aborted")
    person.answers("IDS_OK")
    person.sees(pages.home(words), "home after the cancel")
    must(person.home.results() == [], "left: %s" % person.home.results())
    person.quits()


def a_cancelled_avi(person):
    """No note follows, and the progress view stays until the next message is closed."""
    words, file = person.words, person.media.long_avi
    person.starts()
    _chooses_avi(person, file)
    person.presses("IDS_REPAIR")
    person.presses("IDS_PAUSE")
    person.sees(pages.repairing_avi(words, file, "IDS_RESUME"), "paused")
    person.presses("IDS_RESUME")
    person.sees(pages.repairing_avi(words, file), "resumed")
    person.presses("IDS_CANCEL")
    person.is_told(pages.question(words, "IDS_CANCEL_DLG_MSG"), "cancel")
    person.answers("IDS_YES")
    person.sees(pages.repairing_avi(words, file), "still in the progress view")
    person.presses_title_bar("IDS_CLOSE")
    person.is_told(pages.question(words, "IDS_CLOSE_DLG_MSG"), "quit")
    person.answers("IDS_NO")
    person.sees(pages.home(words), "home")
    person.quits()


def a_cancelled_save(person):
    """To another disk, and a slow one. Both the window and the worker tell that it was given up."""
    words = person.words
    with person.home.slow_disk() as (disk, let_it_write):
        file = os.path.join(disk, "holiday.mov")
        saving = pages.saving(words, file)
        aborted = pages.note(words, "IDS_SAVE_ABORTED")
        person.starts()
        _repairs_with_reference(person)
        person.presses("IDS_SAVE")
        person.saves_as(file)
        person.sees(saving, "saving")
        person.presses("IDS_CANCEL")
        person.is_told(pages.question(words, "IDS_CANCEL_DLG_MSG"), "cancel")
        person.answers("IDS_NO")
        person.sees(saving, "goes on after No")
        must(os.path.isfile(file), "nothing is being saved")
        person.presses("IDS_CANCEL")
        person.is_told(pages.question(words, "IDS_CANCEL_DLG_MSG"), "cancel again")
        person.answers("IDS_YES", closes=False)
        person.is_told(aborted, "aborted")
        let_it_write()
        until(lambda: len(screen.windows(pid=person.program.pid)) == 3, "the worker's note")
        person.answers("IDS_OK", closes=False)
        until(lambda: len(screen.windows(pid=person.program.pid)) == 2, "the end of one note")
        person.is_told(aborted, "told again")
        person.answers("IDS_OK")
        person.sees(pages.home(words), "home after the cancel")
        must(not os.path.exists(file), "left on the disk: " + file)
        must(person.home.results() == [], "left: %s" % person.home.results())
        must(person.home.opened() == [], "the folder was opened")
        person.quits()


def quit_and_home_on_every_page(person):
    """Where nothing runs, Close asks and stays after No; Home and Back lead home."""
    words, media = person.words, person.media
    person.starts()

    def stays_after_no(page, called):
        person.presses_title_bar("IDS_CLOSE")
        person.is_told(pages.question(words, "IDS_CLOSE_DLG_MSG"), "quit from " + called)
        person.answers("IDS_NO")
        person.sees(page, called)

    def goes_home(called):
        person.presses_title_bar("IDS_HOME")
        person.sees(pages.home(words), "home from " + called)

    stays_after_no(pages.home(words), "home")
    goes_home("home")
    _chooses_mov(person, media.cut)
    stays_after_no(pages.chosen(words, pages.corrupted(media.cut)), "chosen")
    goes_home("chosen")
    _chooses_avi(person, media.avi)
    person.presses("IDS_BACK")
    person.sees(pages.home(words), "home by Back")
    _is_asked_for_a_reference(person, media.cut)
    stays_after_no(pages.need_reference(words, media.cut), "need reference")
    goes_home("need reference")
    _is_asked_for_a_reference(person, media.cut)
    _gives_reference(person, media.cut, media.healthy)
    stays_after_no(pages.reference_chosen(words, media.cut, media.healthy), "reference chosen")
    goes_home("reference chosen")
    _repairs_with_reference(person)
    stays_after_no(_details_of_mp4(person, "holiday.mp4"), "finished")
    must(person.home.results() == ["Repaired.mov"], "results: %s" % person.home.results())
    person.quits()
    must(person.home.results() == [], "the result was kept")


def language_and_menus(person):
    media = person.media
    person.starts()
    _is_asked_for_a_reference(person, media.cut)
    # The languages of the menu in their order: English, French, German.
    for place, language in ((3, "German"), (1, "English")):
        person.presses_title_bar("IDS_MENU")
        person.chooses_from_menu(1, place)
        person.words = Words(os.path.join(person.home.programs, "Lang"), language)
        person.sees(pages.need_reference(person.words, media.cut), "need reference, " + language)
    person.quits()


def _button_of_box(program, text):
    """The button of a box with this text, once it stands."""
    try:
        for window in program.root.children if program.root else []:
            things = window.everything() if window.showing else []
            if any(thing.role == "label" and thing.name == text for thing in things):
                return next(thing for thing in things if thing.role == "push button")
    except accessible.Gone:
        pass
    return None


def a_second_start(person):
    """It says that one runs already, ends, and the first window comes to the front; also while
    that one sits in a message."""
    words = person.words
    person.starts()
    person.sees(pages.home(words), "home")
    person.presses_title_bar("IDS_CLOSE")
    person.is_told(pages.question(words, "IDS_CLOSE_DLG_MSG"), "quit")
    second = desk.Program(person.home, person.bus)
    ok = until(lambda: _button_of_box(second, "Kelvo Clipfix is already running in another "
                                              "instance"), "the box")
    person.looks("second start")
    screen.click(*ok.middle)
    second.ends()
    until(lambda: person.message.active, "the question in front")
    person.answers("IDS_NO")
    person.sees(pages.home(words), "home again")
    person.quits()


def _drops(person, file, page):
    person.drops(file)
    person.sees(page, "dropped " + os.path.basename(file))
    person.closes_folder()


def a_file_from_outside(person):
    """Named at the start, and dropped on the window."""
    words, media = person.words, person.media
    person.starts(os.path.join(person.home.videos, "nowhere.mp4"))
    person.is_told(pages.note_with_link(words, "IDS_MOVERROR4"), "no such file")
    person.answers("IDS_CANCEL")
    person.sees(pages.home(words), "home")
    person.quits()

    person.starts(os.path.relpath(media.cut, person.home.folder))
    person.sees(pages.chosen(words, pages.corrupted(media.cut)), "chosen at the start")
    _drops(person, media.avi, pages.chosen(words, pages.path_of_avi(media.avi)))
    _drops(person, media.cut, pages.chosen(words, pages.corrupted(media.cut)))
    person.presses("IDS_REPAIR")
    person.sees(pages.need_reference(words, media.cut), "need reference")
    _drops(person, media.healthy, pages.reference_chosen(words, media.cut, media.healthy))
    person.quits()


def the_window_itself(person):
    """It moves by its bar, goes away and comes back, and takes the whole screen."""
    person.starts()
    person.sees(pages.home(person.words), "home")
    window = screen.windows(title="Kelvo Clipfix")[0]
    left, top, width, height = screen.place(window)
    must((width, height) == (1025, 585), "the window is %d by %d" % (width, height))
    must(abs(left - (screen.SIZE[0] - 1025) // 2) <= 1, "it is not in the middle")
    screen.drag((left + 300, top + 20), (left + 340, top + 60))
    # The first few points of the way are what tells a drag from a click.
    until(lambda: all(20 <= now - then <= 40 for now, then
                      in zip(screen.place(window)[:2], (left, top))), "the move by the bar")
    person.presses_title_bar("IDS_MINIMIZE")
    until(lambda: not screen.windows(title="Kelvo Clipfix"), "the minimised window")
    subprocess.run(["xdotool", "windowactivate", window], check=True)
    person.presses_title_bar("IDS_MAXIMIZE")
    until(lambda: screen.place(window)[2:] == screen.SIZE, "the whole screen")
    person.sees(pages.home(person.words), "maximised")
    person.presses_title_bar("IDS_RESTORE")
    until(lambda: screen.place(window) == (left, top, 1025, 585), "the window as it was")
    person.quits()


def ten_jobs(person):
    """Of both kinds, without a complaint and without a leak."""
    person.starts()
    for job in range(10):
        if job % 2 == 0:
            _repairs_avi(person)
        else:
            _repairs_with_reference(person)
        if job % 5 == 0:
            person.presses("IDS_SAVE")
            person.saves_as()
            person.is_told(pages.note(person.words, "IDS_SAVE_COMPLETED"), "saved")
            person.answers("IDS_OK")
        else:
            person.presses("IDS_HOME", section=2)
        person.sees(pages.home(person.words), "home")
    person.quits()

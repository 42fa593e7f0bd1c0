"""Sentences to be spoken: plain English ones, and invented words for voices of any other language.

What is said doesn't matter to a noise model, but that every sound follows every other does; so
invented words do as well as real ones. A sentence's split follows from the sentence itself, hence
no sentence of the test set was ever seen in training.
"""

import zlib

SUBJECTS = """the old teacher|my younger sister|a tall stranger|our neighbour|the whole family|every child|the doctor|
a quiet engineer|the two brothers|nobody here|the captain|a group of tourists|her best friend|the mayor|some visitors|
the girl with the violin|an honest farmer|the company|your uncle George|the bus driver|each of us|the young couple|
a famous author|the judge|their cousin Beth|the weather service|the night watchman|Michael|Sophie|a large brown dog
""".replace("\n", "").split("|")
VERBS = """carried|never forgot|finally found|wanted to sell|looked after|asked about|threw away|has been painting|
would rather keep|described|measured|usually enjoys|should have checked|counted|refused to open|is going to repair|
watched|borrowed|pushed|left behind|could hardly see|chose|will bring|put back|washed|mentioned|gave away|drew
""".replace("\n", "").split("|")
OBJECTS = """the yellow bicycle|three boxes of apples|a letter from Vienna|the broken window|his grandfather's watch|
seventeen euros|an unusual question|the shortest way home|fresh bread and cheese|a map of the islands|the green jacket|
enough paper for everyone|the first chapter|those heavy chairs|a cup of ginger tea|the missing key|her new address|
a choice of five colours|both photographs|the view across the river|zero point six percent|the latest figures|
a very thin thread|the sound of thunder|an empty glass|the garage door|joyful music|all the vegetables|a wolf
""".replace("\n", "").split("|")
ENDINGS = """before breakfast|on Thursday morning|in the middle of the night|without saying a word|near the harbour|
because of the storm|as fast as possible|for almost eight years|when the train stopped|at half past nine|again and again|
while the others slept|just outside the village|in spite of the rain|after the third lesson|under the bridge|by mistake|
during the long summer|with great pleasure|since last January|although it was late|from the top shelf|so they say
""".replace("\n", "").split("|")
OPENINGS = """yes|well|listen|by the way|to be honest|last week|once more|thank you|perhaps|of course|suddenly|in the end
""".strip().split("|")

ONSETS = "b d f g h k l m n p r s t v z j b d k l m n p r s t st tr pl kr sp fl br gr".split()
VOWELS = "a e i o u a e i o ai ei au".split()
CODAS = ["", "", "", "n", "r", "s", "l", "t", "m", "k"]

# Scripts of which every letter below stands for the Latin one at the same place.
LATIN = "b d f g h k l m n p r s t v z j a e i o u".split()
CYRILLIC = dict(zip(LATIN, "б д ф г х к л м н п р с т в з й а е и о у".split()))
DEVANAGARI = dict(zip(LATIN[:16], "ब द फ ग ह क ल म न प र स त व ज य".split()))
TELUGU = dict(zip(LATIN[:16], "బ ద ఫ గ హ క ల మ న ప ర స త వ జ య".split()))
INDIC_VOWELS = {"hindi": dict(zip("aeiou", ["ा", "े", "ि", "ो", "ु"])), "telugu": dict(zip("aeiou", ["ా", "ే", "ి", "ో", "ు"]))}


def _english(random):
    parts = [random.choice(SUBJECTS), random.choice(VERBS), random.choice(OBJECTS)]
    if random.random() < 0.7:
        parts.append(random.choice(ENDINGS))
    if random.random() < 0.25:
        parts.insert(0, random.choice(OPENINGS) + ",")
    return " ".join(parts) + "."


def _latin_word(random):
    syllables = random.integers(1, 5)
    return "".join(random.choice(ONSETS) + random.choice(VOWELS) + random.choice(CODAS) for _ in range(syllables))


def _indic_word(random, consonants, vowels):
    signs = list(vowels.values()) + [""]
    return "".join(random.choice(list(consonants.values())) + random.choice(signs) for _ in range(random.integers(1, 5)))


def _invented(random, script):
    words = []
    for _ in range(random.integers(4, 11)):
        if script in INDIC_VOWELS:
            words.append(_indic_word(random, DEVANAGARI if script == "hindi" else TELUGU, INDIC_VOWELS[script]))
        else:
            word = _latin_word(random)
            words.append("".join(CYRILLIC[letter] for letter in word) if script == "cyrillic" else word)
    return " ".join(words) + "."


def split_of(text):
    """Nine in ten of all sentences are for training."""
    return {0: "development", 1: "test"}.get(zlib.crc32(text.encode()) % 20, "train")


def sentence(random, script, split):
    """A sentence of this split. `script` is "english", "latin", "cyrillic", "hindi" or "telugu"."""
    while True:
        text = _english(random) if script == "english" else _invented(random, script)
        if split_of(text) == split:
            return text
